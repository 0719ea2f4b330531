// Which way a document is saved: as it was, into its file, or anew.
#include "text/rtfwrite/RtfSave.h"

#include "text/TextStore.h"
#include "text/rtfwrite/RtfSame.h"
#include "text/rtfwrite/RtfSplice.h"

#include <algorithm>

namespace text::rtf {

namespace {

// Empty when RTF has no words for what was edited, or when the file breaks rules where it was.
std::string Spliced(const Content& content, const DocumentProperties& properties) {
  std::string bytes = RtfSplice(*properties.source, content).Run();
  const ReadResult read = Read(bytes, std::make_shared<TextStore>());
  const bool same = MeansTheSame(content, properties.defaultFont, read.content, read.properties.defaultFont);
  return same ? bytes : std::string();
}

}  // namespace

Saved Save(const Content& content, const DocumentProperties& properties) {
  const Source* source = properties.source.get();
  const bool spliceable = source && LooksLikeRtf(*source->bytes) && source->content.store() == content.store();
  if (!spliceable) return {};
  if (content.SameAs(source->content)) return {SavedAs::kUnchanged, source->bytes};
  std::string bytes = Spliced(content, properties);
  if (bytes.empty()) return {};
  return {SavedAs::kSpliced, std::make_shared<const std::string>(std::move(bytes))};
}

bool Write(const Content& content, const DocumentProperties& properties, const ByteSink& sink) {
  constexpr size_t kPortion = 1 << 16;
  const Saved saved = Save(content, properties);
  if (!saved.bytes) return WriteAnew(content, properties, sink);
  for (std::string_view rest = *saved.bytes; !rest.empty(); rest.remove_prefix(std::min(kPortion, rest.size())))
    if (!sink(rest.substr(0, kPortion))) return false;
  return true;
}

}  // namespace text::rtf
