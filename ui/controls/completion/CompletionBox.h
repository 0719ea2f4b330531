// A drop-down combo box that lies hidden over an editor, and stands at its caret while something is completed.
#pragma once

#include "ui/controls/completion/CompletionList.h"
#include "ui/editor/RichTextBox.h"

#include <QFrame>
#include <QPointer>

#include <memory>

namespace ui {

// The drop-down offers what begins with the text that is typed. Arrow keys or a click put an entry into the line, which
// narrows nothing; typing goes on from there.
class CompletionBox : public QFrame {
  Q_OBJECT

 public:
  explicit CompletionBox(RichTextBox& editor);
  ~CompletionBox() override;

  void SetEntries(std::shared_ptr<const CompletionEntries> entries);

  // At the editor's caret, with this text typed into it; takes the keyboard and drops its list down. When already this
  // text begins no entry, all entries are offered until it closes.
  void Open(const QString& text);
  // Gives the keyboard back to the editor if it had it.
  void Close();
  bool isOpen() const { return open_; }
  QString Text() const;  // what is typed, or the chosen entry
  void ToggleDropDown();
  const CompletionList& list() const { return *list_; }

 Q_SIGNALS:
  void Accepted(QChar key);  // a blank, a CR, or '>'; nothing has closed yet
  void Cancelled();          // by Escape; nothing has closed yet

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  // Nothing that its line leaves over goes on to the editor behind it.
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;

 private:
  class Line;

  void Typed(const QString& text);
  void Narrow();
  bool StepBy(const QKeyEvent& event);
  void Choose(int row);
  void TellOf(int row);
  QRect PlaceAtCaret() const;
  void Place();
  void PlaceSoon();
  void ShowDropDown();
  void LineFocused(bool focused, Qt::FocusReason reason);
  void WatchAncestors(bool watch);

  RichTextBox& editor_;
  Line* line_;
  QPointer<CompletionList> list_;  // of the editor's window while it is open
  std::shared_ptr<const CompletionEntries> entries_ = std::make_shared<CompletionEntries>();
  QString typed_;
  bool open_ = false;
  bool offersAll_ = false;
  bool droppedDown_ = false;  // as the user wants it; without entries or focus nothing shows
  bool above_ = false;
  bool placing_ = false;
};

}  // namespace ui
