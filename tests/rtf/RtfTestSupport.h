// What the tests of this folder share.
#pragma once

#include "text/TextStore.h"
#include "text/rtf/Rtf.h"

#include <atomic>
#include <memory>
#include <string>

namespace text::rtf {

inline std::shared_ptr<TextStore> NewStore() {
  return std::make_shared<TextStore>();
}

inline ReadResult ReadNew(std::string_view bytes) {
  return Read(std::string(bytes), NewStore());
}

inline std::string TextOf(const Content& content) {
  return content.ByteString(content.all());
}

// A whole content as one line, so that contents of different stores compare: "<b fs20>" before text whose character
// format differs from that before it, "<>" for the default one, "\n" with "[center li720]" behind each break and "$"
// with the last paragraph's format at the end; a default format gives no brackets. A cell's end is "|", a row's "||".
std::string Describe(const Content& content);

// The text with LF for every break, a soft one too, a tab for a cell's end and nothing for an object.
std::string PlainLines(const Content& content);
// As written without the file that was read.
std::string Written(const ReadResult& result);
std::string Written(const Content& content, const DocumentProperties& properties = {});

// The bytes of a file; empty when there is none.
std::string FileBytes(const std::string& path);

// Reads what was read once more and compares what a watcher is told with the content: nothing, or what is wrong.
std::string ReadAgain(const ReadResult& read);

// The most bytes that any new has asked for at once; a test sets it back to 0.
extern std::atomic<size_t> largestNew;

}  // namespace text::rtf
