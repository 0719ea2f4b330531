// A tree with a check box, a picture and a text for every node. Whether a folder is open is the owner's business: the
// view asks for it and shows what the source holds.
#pragma once

#include "ui/controls/TreeSource.h"

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
  void ShowAllChanged();

  std::optional<TreePlace> SelectedItem() const;
  void SelectItem(TreePlace node);
  void EnsureVisible(TreePlace node);
  std::optional<TreePlace> NodeAt(const QPoint& point) const;

  double fontSize() const { return font().pointSizeF(); }
  void SetFontSize(double points);

  // --- Changing a name in place
  void StartLabelEdit();  // of the selected node

 Q_SIGNALS:
  // From the event loop, outside of commands; the node was not moved meanwhile.
  void NodeClicked(TreePlace node);   // on its picture or text, and let go there
  void ToggleWanted(TreePlace node);  // of a folder, by its arrow or a key
  void DoubleClicked();               // on the selected node
  void LabelEdited(const std::string& name);
  // At once.
  void EnterPressed();
  void RefreshPressed();
  void Deleted(bool shift);  // the Delete key was let go
  void LabelEditBegins();
  void LabelEditCancelled();
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
  void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;

 private:
  void AfterThisEvent(std::function<void()> call);
  void EmitFor(const QModelIndex& index, void (TreeView::*signal)(TreePlace));
  bool ToggleByKey(int key);
  bool IsOnArrow(const QModelIndex& index, const QPoint& point) const;
  void ShowToolTip(const QHelpEvent& event);
  void RequestMenuByKey();
  void TakeLabel(const QString& text);

  TreeModel* model_;
  TreeSource* source_ = nullptr;
  QPersistentModelIndex pressed_;        // by the left button, where a click may become of it
  QPersistentModelIndex clicked_;        // before a double click
  std::optional<std::string> newLabel_;  // of the edit that ends
};

}  // namespace ui
