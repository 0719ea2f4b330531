// Any bytes as an HTML page: the reader ends and its content is valid.
#include "text/TextStore.h"
#include "text/html/HtmlReader.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view page(reinterpret_cast<const char*>(data), size);
  text::html::Read(page, std::make_shared<text::TextStore>()).content.CheckInvariants();
  return 0;
}
