// Any bytes: reading must not crash, must give a sound content, and what it wrote must be read back as the same.
#include "fuzz/RtfFuzzing.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace text;
  std::string bytes(reinterpret_cast<const char*>(data), size);
  if (!rtf::LooksLikeRtf(bytes)) bytes.insert(0, "{\\rtf1 ");
  const rtf::ReadResult first = rtf::Read(bytes, std::make_shared<TextStore>());
  first.content.CheckInvariants();
  const std::string written = fuzzing::Written(first.content, first.properties);
  for (const char c : written)
    if (static_cast<unsigned char>(c) >= 0x80) std::abort();
  const rtf::ReadResult second = rtf::Read(written, std::make_shared<TextStore>());
  second.content.CheckInvariants();
  fuzzing::MustEqual(fuzzing::TextOf(first.content), fuzzing::TextOf(second.content), "texts");
  fuzzing::MustEqual(written, fuzzing::Written(second.content, second.properties), "files");
  return 0;
}
