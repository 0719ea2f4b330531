// What an editor is at a moment: its document, the selection, and how it is set.
#pragma once

#include "text/Document.h"
#include "text/layout/ViewLayout.h"
#include "text/rtf/Rtf.h"
#include "ui/editing/EditorHost.h"

#include <QString>

#include <functional>
#include <optional>

namespace ui {

// Pixels around the text; so much also stays free around the caret, so that the ends of the text come into view whole.
constexpr double kTextMargin = 4;

// A bullet hangs by that many twips; the first line's position stays. Without: no number either.
text::ParaFormat WithBullet(text::ParaFormat format, int bulletIndent);
text::ParaFormat WithoutBullet(text::ParaFormat format);

class EditorState {
 public:
  EditorState(text::Document& document, text::layout::ViewLayout& layout, EditorHost& host)
      : document_(document), layout_(layout), host_(host), seenRevision_(document.revision()), told_(Now()) {}

  text::Document& document() { return document_; }
  const text::Document& document() const { return document_; }
  text::layout::ViewLayout& layout() { return layout_; }
  EditorHost& host() { return host_; }

  const text::Selection& selection() const { return selection_; }
  text::Range range() const { return selection_.range(); }
  text::layout::CaretPlace caret() const { return {selection_.caret, affinity_}; }
  bool composing() const { return composing_; }

  // --- Settings
  bool overtype() const { return overtype_; }
  bool readOnly() const { return readOnly_; }
  void SetReadOnly(bool on) { readOnly_ = on; }
  void SetRtfProperties(const text::rtf::DocumentProperties& properties) { rtfProperties_ = properties; }
  const text::rtf::DocumentProperties& rtfProperties() const { return rtfProperties_; }
  // Asked at every paste: only what is saved with its formats takes those of an HTML page, and pictures. Not set: yes.
  void SavesFormatsWhen(std::function<bool()> saves) { savesFormats_ = std::move(saves); }
  // What is pasted or dropped comes in as text alone, and goes out so.
  void SetPlainOnly(bool on) { plainOnly_ = on; }
  bool plainOnly() const { return plainOnly_; }
  // Asked before text that is typed goes in. True: it has been dealt with, and perhaps the editor is gone.
  void BeforeTyping(std::function<bool(const QString& text)> take) { beforeTyping_ = std::move(take); }

 protected:
  ~EditorState() = default;

  struct Told {  // what the host knows
    text::Selection selection;
    text::Revision revision = 0;
    std::optional<text::CharFormat> remembered;
    bool operator==(const Told&) const = default;
  };
  Told Now() const { return {selection_, document_.revision(), remembered_}; }
  bool SavesFormats() const { return !savesFormats_ || savesFormats_(); }

  text::Document& document_;
  text::layout::ViewLayout& layout_;
  EditorHost& host_;
  text::Selection selection_;
  text::Bias affinity_ = text::Bias::kRight;
  std::optional<double> goalX_;                 // of a run of vertical moves
  std::optional<text::CharFormat> remembered_;  // for the text typed next
  text::rtf::DocumentProperties rtfProperties_;
  std::function<bool()> savesFormats_;
  std::function<bool(const QString&)> beforeTyping_;
  text::Revision seenRevision_;  // selection_ is of this revision
  Told told_;
  int depth_ = 0;  // of nested operations
  bool reveal_ = false;
  bool overtype_ = false;
  bool readOnly_ = false;
  bool plainOnly_ = false;
  bool composing_ = false;
  unsigned long long lastKeyTime_ = 0;
};

}  // namespace ui
