#include "tests/rtf/RtfTestSupport.h"

namespace text::rtf {

std::string PlainLines(const Content& content) {
  std::string lines = TextOf(content);
  for (const std::string_view end : {"\r\n", "\xE2\x80\xA8"})
    for (size_t at = 0; (at = lines.find(end, at)) != std::string::npos; ++at) lines.replace(at, end.size(), "\n");
  return lines;
}

std::string Written(const Content& content, const DocumentProperties& properties) {
  std::string bytes;
  Write(content, properties, [&](std::string_view part) {
    bytes += part;
    return true;
  });
  return bytes;
}

std::string Written(const ReadResult& result) {
  return Written(result.content, result.properties);
}

}  // namespace text::rtf
