// In a file of its own, so that the compiler does not see new and free together.
#include "tests/rtf/RtfTestSupport.h"

#include <cstdlib>
#include <new>

namespace text::rtf {
std::atomic<size_t> largestNew;
}

void* operator new(size_t size) {
  if (size > text::rtf::largestNew) text::rtf::largestNew = size;
  if (void* memory = std::malloc(size > 0 ? size : 1)) return memory;
  throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, size_t) noexcept {
  std::free(memory);
}
