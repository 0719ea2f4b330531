// The inside of a RichTextBox, for its own source files.
#pragma once

#include "ui/editing/EditorController.h"
#include "ui/editing/EditorMouse.h"
#include "ui/editing/Guarded.h"
#include "ui/editor/RichTextBox.h"

#include <QBasicTimer>
#include <QFont>
#include <QHelpEvent>

namespace ui {

struct RichTextBox::Impl : EditorHost {
  explicit Impl(RichTextBox& owner) : box(owner) {}

  // EditorHost
  void ViewChanged() override;
  void TextChanged() override;
  void SelectionChanged() override;
  void OvertypeChanged(bool on) override { Q_EMIT box.OvertypeChanged(on); }
  void ZoomBy(double factor) override { box.SetZoom(layout.zoom() * factor); }
  void Refused() override;
  void ResetComposition() override;
  void FollowLink(const std::string& target) override { Q_EMIT box.LinkActivated(QString::fromStdString(target)); }
  void OpenObject(text::Units place) override;
  void StartDrag() override;
  const QMimeData* ClipboardData(QClipboard::Mode mode) override;
  void SetClipboardData(QClipboard::Mode mode, std::unique_ptr<QMimeData> data) override;
  bool HasPrimarySelection() override;

  // For whatever Qt calls; a failure is told by EditFailed.
  template <typename Call>
  auto Guard(Call&& call) {
    return Guarded(call, [this](const QString& reason) { Q_EMIT box.EditFailed(reason); });
  }

  void UpdateScrollBar();
  void ScrollBarAction(int action);
  void RestartBlinking();
  void RepaintCaret();
  void UpdateAutoScroll();
  void UpdateLinkColor();
  void UpdateCursor(QPointF point, Qt::KeyboardModifiers modifiers);
  bool ShowToolTip(const QHelpEvent& event);
  double LineHeight() const;
  text::CharFormat DefaultFormat(text::FormatTable& formats) const;
  void SetPlainProperties();
  text::Content InDefaultFormat(const text::Content& content) const;
  void ApplyEmptyFormat();

  RichTextBox& box;
  text::Document document;
  text::layout::ViewLayout layout{document};
  EditorController controller{document, layout, *this};
  EditorMouse mouse{controller};
  bool rich = false;
  int bulletIndent = 360;
  QFont defaultFont;
  std::string defaultFontName;  // UTF-8; empty = not set
  double defaultPoints = 12;
  std::vector<int> defaultTabStops;
  QColor background;
  QBasicTimer blinkTimer;
  QBasicTimer autoScrollTimer;
  bool caretShown = false;
  bool syncingScrollBar = false;
  bool dragging = false;
  bool takesDrop = false;  // what is over it now
  // What assistive programs were told of.
  text::Content toldContent;
  text::Revision toldRevision = 0;
};

}  // namespace ui
