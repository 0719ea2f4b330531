#include "tests/editor/FailingAllocation.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <utility>

namespace {

thread_local bool failNext = false;

}  // namespace

void* operator new(std::size_t size) {
  if (std::exchange(failNext, false)) throw std::bad_alloc();
  if (void* memory = std::malloc(std::max<std::size_t>(size, 1))) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace ui::test {

FailingAllocation::FailingAllocation() {
  failNext = true;
}
FailingAllocation::~FailingAllocation() {
  failNext = false;
}
bool FailingAllocation::happened() const {
  return !failNext;
}

}  // namespace ui::test
