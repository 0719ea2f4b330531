// A tree with a check box, a picture and a text for every node. Whether a folder is open is the owner's business: the
// view asks for it and shows what the source holds.
#pragma once

#include "ui/controls/TreeSource.h"

#include <QPointer>
#include <QTreeView>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ui {

class TreeModel;

class TreeView : public QTreeView {
  Q_OBJECT

 public:
  explicit TreeView(QWidget* parent = nullptr);
  ~TreeView() override;

  // --- The nodes. The source changes only inside of a call.
  void SetSource(TreeSource* source);
  void Reset(const std::function<void()>& change);
  // `count` children at row `first` of the node, which is shown open then.
  void InsertBelow(TreePlace node, int first, int count, const std::function<void()>& change);
  void RemoveBelow(TreePlace node, int first, int count, const std::function<void()>& change);
  void ShowChanged(TreePlace node);
  void ShowImageChanged(TreePlace node);  // which says whether there may be something in it
  void ShowAllChanged();
  // Many changes in one go; `placeAfter` says where a node is then, if it still is.
  void Rearrange(const std::function<void()>& change,
                 const std::function<std::optional<TreePlace>(TreePlace)>& placeAfter);

  std::optional<TreePlace> SelectedItem() const;
  void SelectItem(TreePlace node);
  void EnsureVisible(TreePlace node);
  std::optional<TreePlace> NodeAt(const QPoint& point) const;

  double fontSize() const { return font().pointSizeF(); }
  void SetFontSize(double points);

  // --- Drag and drop of files. Effects: 1 = may be copied, 3 = may be moved too.
  struct DropOffer {
    bool accepted = false;
    bool highlighted = false;
  };
  struct Drop {
    std::string target;  // the text of each node from the root down, joined with "/"
    std::vector<std::string> files;
    bool move = false;
    bool own = false;  // dragged out of this tree
  };
  // The files of a drag that begins now; none = no drag.
  void SetDragFiles(std::function<std::vector<std::string>(int effects)> files) { dragFiles_ = std::move(files); }
  // Asked at each move over the tree: whether files may be dropped on the node. What was offered last is dropped on.
  void SetDropOffer(std::function<DropOffer(std::optional<TreePlace> node, const QPoint& point)> offer) {
    dropOffer_ = std::move(offer);
  }

  // --- Changing a name in place
  void StartLabelEdit();  // of the selected node

 Q_SIGNALS:
  // From the event loop, outside of commands; the node was not moved meanwhile.
  void NodeClicked(TreePlace node);    // on its picture or text, and let go there
  void ToggleWanted(TreePlace node);   // of a folder, by its arrow or a key
  void DoubleClicked(TreePlace node);  // on its picture or text, twice
  void LabelEdited(const std::string& name);
  void FilesDropped(const Drop& drop);
  void DragEnded();  // one out of this tree
  // At once.
  void EnterPressed();
  void RefreshPressed();
  void Deleted(bool shift);  // the Delete key was let go; pressed with Shift
  void LabelEditBegins();
  void LabelEditCancelled();
  void DragLeft();  // or was let go
  // A node was pressed with the right button, or the menu key was. It is the selected one by then.
  void MenuRequested(const QPoint& globalPosition);

 protected:
  bool viewportEvent(QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
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
  void dragLeaveEvent(QDragLeaveEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;

 private:
  void AfterThisEvent(std::function<void()> call);
  void EmitFor(const QModelIndex& index, void (TreeView::*signal)(TreePlace));
  bool ToggleByKey(int key);
  bool IsOnArrow(const QModelIndex& index, const QPoint& point) const;
  void ShowToolTip(const QHelpEvent& event);
  void RequestMenuByKey();
  void FitColumn();
  void MeasureSeenLines();
  void TakeLabel(const QString& text);
  void StartDrag();
  void Offer(const QPoint& point);
  void Answer(QDropEvent& event);
  void Highlight(const QModelIndex& index);
  std::string PathOf(QModelIndex index) const;

  TreeModel* model_;
  TreeSource* source_ = nullptr;
  int widest_ = 0;                       // of the lines that have been seen, in pixels
  QPersistentModelIndex pressed_;        // by the left button, where a click may become of it
  QPersistentModelIndex clicked_;        // before a double click
  QPointer<QWidget> editor_;             // of the name that is being changed
  std::string oldLabel_;                 // of the edit that goes on
  std::optional<std::string> newLabel_;  // of the edit that ends
  std::function<std::vector<std::string>(int)> dragFiles_;
  std::function<DropOffer(std::optional<TreePlace>, const QPoint&)> dropOffer_;
  std::unique_ptr<QMouseEvent> armed_;  // the press with a modifier that may become a drag
  QPersistentModelIndex offered_;       // what a drop now goes to
  QPersistentModelIndex highlighted_;   // the same, where it is shown
  std::optional<bool> deletePressed_;   // and not yet let go; with Shift
  bool holdsFiles_ = false;             // what is dragged over it
};

}  // namespace ui
