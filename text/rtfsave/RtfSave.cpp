// Which way a document is saved: as it was, into its file, or anew.
#include "text/rtfsave/RtfSave.h"

#include "text/TextStore.h"
#include "text/rtfsave/RtfCanonical.h"
#include "text/rtfsave/RtfSame.h"
#include "text/rtfsave/RtfSplice.h"
#include "text/rtfwrite/RtfWrite.h"

#include <algorithm>

namespace text::rtf {

namespace {

// Three passes over about as many bytes each, as one progress.
class Passes {
 public:
  Passes(const Progress& progress, size_t size) : progress_(progress), size_(static_cast<int64_t>(size)) {}
  Progress Next() {
    Progress pass = [this, before = pass_++ * size_](int64_t done) {
      cancelled_ = cancelled_ || (progress_ && !progress_((before + std::min(done, size_)) / 3));
      return !cancelled_;
    };
    pass(0);  // what is short reports nothing itself
    return pass;
  }
  bool cancelled() const { return cancelled_; }

 private:
  const Progress& progress_;
  const int64_t size_;
  int pass_ = 0;
  bool cancelled_ = false;
};

// Of what is in memory and no other store's.
bool IsSpliceable(const Content& content, const Source* source) {
  return source && LooksLikeRtf(*source->bytes) && source->content.store() == content.store();
}

// What a file has become. Anew when it does not mean what was wanted: RTF has no words for it, or the file breaks rules
// there.
Saved Checked(std::string file, const Content& content, const DocumentProperties& properties, Passes& passes) {
  if (passes.cancelled()) return {SavedAs::kCancelled, nullptr};
  const auto bytes = std::make_shared<const std::string>(std::move(file));
  const ReadResult read = Read(bytes, std::make_shared<TextStore>(), passes.Next());
  const bool same = !read.cancelled && MeansTheSame(content, properties.defaultFont, read.content,
                                                    read.properties.defaultFont, passes.Next());
  if (passes.cancelled()) return {SavedAs::kCancelled, nullptr};
  return same ? Saved{SavedAs::kSpliced, bytes} : Saved{};
}

}  // namespace

Saved Save(const Content& content, const DocumentProperties& properties, const Progress& progress) {
  const Source* source = properties.source.get();
  if (!IsSpliceable(content, source)) return {};
  if (content.SameAs(source->content)) return {SavedAs::kUnchanged, source->bytes};
  Passes passes(progress, source->bytes->size());
  std::string spliced = RtfSplice(*source, content).Run(passes.Next());
  return Checked(std::move(spliced), content, properties, passes);
}

Saved Rewrite(const Content& content, const DocumentProperties& properties) {
  const Source* source = properties.source.get();
  if (!IsSpliceable(content, source) || !content.SameAs(source->content)) return {};
  const std::string spliced = RtfSplice(*source, content, RtfSplice::Scope::kAllText).Run();
  const Progress progress;
  Passes passes(progress, source->bytes->size());
  Saved saved = Checked(Canonical(spliced), content, properties, passes);
  if (saved.bytes) return saved;
  const std::string_view bytes = *source->bytes;
  return Checked(Canonical(bytes.substr(bytes.find('{'))), content, properties, passes);
}

bool Write(const Content& content, const DocumentProperties& properties, const ByteSink& sink,
           const Progress& progress) {
  constexpr size_t kPortion = 1 << 16;
  const Saved saved = Save(content, properties, progress);
  if (saved.as == SavedAs::kCancelled) return false;
  if (!saved.bytes) return WriteAnew(content, properties, sink);
  for (std::string_view rest = *saved.bytes; !rest.empty(); rest.remove_prefix(std::min(kPortion, rest.size())))
    if (!sink(rest.substr(0, kPortion))) return false;
  return true;
}

}  // namespace text::rtf
