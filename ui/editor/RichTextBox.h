// The rich-text control: a scroll area around a controller (input to edits), a layout and a painter.
// Positions at this surface are UTF-16 units with every line break counting two (CR LF); texts hold CR LF.
// A stray byte of a file is one unit U+DC80 .. U+DCFF. Lengths are twips, colours 0x00BBGGRR.
#pragma once

#include "text/Document.h"
#include "text/layout/ViewLayout.h"
#include "text/rtf/Rtf.h"
#include "text/search/Search.h"
#include "ui/editor/PrintJob.h"

#include <QAbstractScrollArea>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QMimeData;

namespace ui {

enum FindOption { kFindWholeWord = 2, kFindMatchCase = 4, kFindNoHighlight = 8 };

class RichTextBox : public QAbstractScrollArea {
  Q_OBJECT
  friend class EditorAccessible;

 public:
  explicit RichTextBox(QWidget* parent = nullptr);
  ~RichTextBox() override;

  // Whoever edits the document directly calls DocumentEdited() afterwards.
  text::Document& document();
  const text::Document& document() const;
  void DocumentEdited();

  // --- The selection. Setting clamps to the text; SelStart also snaps left out of a CR LF and a surrogate pair.
  int64_t SelStart() const;
  void SetSelStart(int64_t start);  // an empty selection at start
  int64_t SelLength() const;
  void SetSelLength(int64_t length);
  QString SelText() const;  // exactly SelLength() units
  // Replaces the selection; behind it the caret stands after the new text. Does nothing when protected text is in the
  // way.
  void SetSelText(const QString& text);
  // The same for engine bytes and positions, without a copy as UTF-16; the new text is selected. False: protected text
  // is in the way.
  text::Range SelectedRange() const;
  bool ReplaceSelection(std::string_view bytes);
  QByteArray SelRTF() const;
  // RTF keeps its formatting, any other text goes in as plain text in the format at the caret.
  void SetSelRTF(const QByteArray& rtfOrText);
  QString Text() const;  // the whole text

  // --- The format of the selection, or with none that of the text typed next (until the caret moves). Empty = mixed.
  // Setting is one undo step. A selection with protected text takes no format but SelProtected.
  std::optional<bool> SelBold() const;
  void SetSelBold(bool on);
  std::optional<bool> SelItalic() const;
  void SetSelItalic(bool on);
  std::optional<bool> SelUnderline() const;
  void SetSelUnderline(bool on);
  std::optional<bool> SelStrikeThru() const;
  void SetSelStrikeThru(bool on);
  std::optional<bool> SelProtected() const;
  void SetSelProtected(bool on);
  std::optional<QString> SelFontName() const;
  void SetSelFontName(const QString& name);
  std::optional<double> SelFontSize() const;  // points
  void SetSelFontSize(double points);
  std::optional<int64_t> SelColor() const;  // 0x00BBGGRR; -1 = automatic
  void SetSelColor(int64_t color);
  std::optional<int> SelCharOffset() const;  // twips, positive raises
  void SetSelCharOffset(int twips);

  // --- Of the paragraphs the selection touches
  std::optional<int> SelAlignment() const;  // 0 left, 1 right, 2 centre, 3 justified
  void SetSelAlignment(int alignment);
  std::optional<int> SelIndent() const;  // of the first line
  void SetSelIndent(int twips);
  std::optional<int> SelHangingIndent() const;  // of the following lines, from the first line's
  void SetSelHangingIndent(int twips);
  std::optional<int> SelRightIndent() const;
  void SetSelRightIndent(int twips);
  std::optional<bool> SelBullet() const;
  void SetSelBullet(bool on);
  int BulletIndent() const;  // for the bullets set next
  void SetBulletIndent(int twips);

  // --- Commands, as by the keys
  bool CanUndo() const;
  bool CanRedo() const;
  void Undo();
  void Redo();
  void Cut();
  void Copy();
  void Paste();
  void PastePlainText();
  void DeleteSelection();  // as the Delete key
  void SelectAll();

  // --- For who completes what is typed
  // Asked before text that the user types goes in, by a key or an input method. True: it has been dealt with.
  void BeforeTyping(std::function<bool(const QString& text)> take);
  // As the user's typing in insert mode, but a step of its own. False, with a beep: protected text is in the way.
  bool TypeOver(const QString& text);
  bool MayTypeOver();       // false, with a beep: it would be refused
  void Refuse();            // the beep of a command that has nothing to do
  QRect CaretRect() const;  // in this control's coordinates; outside of it when the caret is scrolled away

  // --- Embedded objects, each one character
  // The place of the one that is selected alone or beside which the caret stands.
  std::optional<text::Units> SelectedObject() const;
  bool MayChangeObject(text::Units place) const;  // false: it is protected, or there is none
  // Contents of this document's store with an object each, over the selection in one step: the place of the first.
  // Nothing, with a beep: it would be refused.
  std::optional<text::Units> InsertObjects(const std::vector<text::Content>& objects);
  // Puts another object, the only thing in that RTF, in its place: one step, and the selection stays. False: as above.
  bool ReplaceObject(text::Units place, std::string_view rtf);

  // The first match at or behind `start` (a surface position), selected and scrolled into view with lines around it
  // unless kFindNoHighlight; returns its position or -1.
  int64_t Find(const QString& text, int64_t start, int options);
  // The two halves of Find. The first works on any thread.
  static std::optional<text::Range> FindIn(const text::Content& content, const QString& text, int64_t start,
                                           int options, const text::SearchProgress& progress = {});
  void SelectFound(text::Range match);
  // Whether the range, which is not empty, could be replaced: nothing in it is protected or holds a table together.
  static bool MayReplace(const text::Content& content, text::Range range);
  QRect SelectionOnScreen() const;  // what of the selection, or of the caret, is seen
  void ScrollToCaret();

  // --- Content. A load replaces the text, clears undo and the changed state and puts the caret at the start.
  void LoadPlain(const text::LoadedText& loaded);
  void LoadRtf(text::rtf::ReadResult read);
  bool isRichText() const;  // the content came from RTF
  const text::rtf::DocumentProperties& rtfProperties() const;
  void SavesFormatsWhen(
      std::function<bool()> saves);  // asked at every paste: pages' formats and pictures come in only then
  void SetPlainOnly(bool on);        // what is pasted or dropped comes in, and what is copied goes out, as text alone
  // The font of an empty control and of plain text loaded into it afterwards: no undo step, no change.
  void SetDefaultFormat(const QString& fontName, double points);
  // Tab stops of the view for paragraphs without (enough) stops of their own, in twips: neither edit nor undo step.
  void SetDefaultTabStops(std::vector<int> twips);

  // The text, or the selection if there is one and `selection`, to be printed.
  PrintJob MakePrintJob(bool selection) const;

  // --- Appearance
  void SetBackgroundColor(const QColor& color);  // invalid = the palette's
  void SetBackgroundColor(int64_t color);        // -1 = the palette's
  double Zoom() const;
  void SetZoom(double factor);
  bool overtype() const;
  void SetOvertype(bool on);
  bool readOnly() const;
  void SetReadOnly(bool on);

 Q_SIGNALS:
  void Change();     // every change of text or format
  void SelChange();  // the selection moved, or the format at it changed
  void OvertypeChanged(bool on);
  // Control and a click, or Control and Enter, on a link. Nothing opens it but who hears this.
  void LinkActivated(const QString& target);
  void ContextMenuRequested(const QPoint& globalPosition);  // right button or menu key
  // A double click, or Control and Enter, on an embedded object; from the event loop. Nothing opens it but who hears
  // this.
  void ObjectActivated(text::Units place);
  // To be embedded at the caret; from the event loop, after the drop was answered.
  void FilesDropped(const std::vector<std::string>& paths);
  // A drag of the selection, to which formats may be added, with Control and Shift (`asFile`) or less. None starts when
  // the button has been let go behind this.
  void DragStarting(QMimeData* data, bool asFile);
  void DragRefused();                      // another program asked for more than can be dragged to it; the drag is over
  void EditFailed(const QString& reason);  // an event could not be carried out (out of memory); nothing was lost

 protected:
  bool viewportEvent(QEvent* event) override;
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void inputMethodEvent(QInputMethodEvent* event) override;
  QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void timerEvent(QTimerEvent* event) override;
  void changeEvent(QEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;
  bool focusNextPrevChild(bool next) override;

 private:
  bool DispatchViewportEvent(QEvent& event);
  bool DispatchEvent(QEvent& event);
  text::layout::PaintOptions CurrentPaintOptions() const;
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace ui
