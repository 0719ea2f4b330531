// A list of lines, any number of which may be selected.
#pragma once

#include <QListView>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ui {

struct ListLine {
  std::string text;  // as bytes; decoded only when drawn
  int64_t data = 0;  // what the owner knows the line by
};

// Lines are named by their index from 0. An operation on one line costs O(1), on all of them O(count); what
// is about the selection costs O(stretches of selected lines) besides.
class ListBox : public QListView {
  Q_OBJECT

 public:
  explicit ListBox(QWidget* parent = nullptr);
  ~ListBox() override;

  int count() const;
  const ListLine& line(int index) const;
  int LineOf(int64_t number) const;            // the first line known by it, count() = none; O(1) but after SetLines
  void SetLines(std::vector<ListLine> lines);  // instead of all there are; nothing is selected, the focus on line 0
  void Append(ListLine line);
  void SetText(int index, std::string text);

  int ListIndex() const;  // the focus line, -1 = none
  void SetListIndex(int index);
  bool Selected(int index) const;
  void Select(int index, bool on);
  void SelectToo(std::vector<int> lines);  // O(lines), in one step
  int SelCount() const;
  std::vector<int> SelectedLines() const;  // in rising order
  void SelectOnly(int index);              // and make it the focus line
  void SelectFrom(int first);              // first .. count() - 1, nothing before; the focus line is one of them

  // The nearest line inside the client area; outside of it a number not below count().
  int ItemFromPoint(const QPoint& point) const;

  double fontSize() const { return font().pointSizeF(); }
  void SetFontSize(double points);

  // What the line's tooltip says, asked when the pointer rests on it; plain text.
  void SetToolTips(std::function<QString(int index)> toolTip) { toolTip_ = std::move(toolTip); }
  // The files of a drag that begins now; none = no drag.
  void SetDragFiles(std::function<std::vector<std::string>()> files) { dragFiles_ = std::move(files); }
  bool dragging() const { return dragging_; }

 Q_SIGNALS:
  void Opened();             // double click (from the event loop, outside of commands) or Enter
  void Deleted(bool shift);  // the Delete key was let go; pressed with Shift
  void FocusGained();        // not by a press, which selects by itself
  void FocusLost();
  // A line was pressed with the right button, or the menu key was. The line is selected and has the focus by then.
  void MenuRequested(const QPoint& globalPosition);
  // From the event loop, after the drop was answered and outside of commands.
  void FilesDropped(const std::vector<std::string>& paths);

 protected:
  void ShowTextsBy(QString (*shown)(std::string_view text));  // instead of ShortDisplayText; of as many characters

  bool viewportEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  class Model;

  void Answer(QDropEvent& event) const;
  void RequestMenuByKey();
  void StartDrag();
  bool ShowToolTip(const QHelpEvent& event);
  void AfterThisEvent(std::function<void()> call);

  Model* model_;
  std::function<QString(int)> toolTip_;
  std::function<std::vector<std::string>()> dragFiles_;
  std::unique_ptr<QMouseEvent> armed_;  // the press with a modifier that may become a drag
  std::optional<bool> deletePressed_;   // with Shift, and not let go yet
  bool dragging_ = false;
  bool holdsFiles_ = false;  // what is dragged over it
};

}  // namespace ui
