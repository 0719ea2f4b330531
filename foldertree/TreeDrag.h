// Files dragged out of the tree, over it and onto it.
#pragma once

#include "foldertree/TreeFiles.h"

#include <QTimer>

namespace foldertree {

class TreeDrag : public QObject {
  Q_OBJECT

 public:
  TreeDrag(services::Services& services, FolderTree& tree, TreeFiles& files);
  ~TreeDrag() override;

  // What a drag out of the tree allows while it is under way: 1 copy, 3 copy or move, 0 there is none.
  int TreeDragEffects = 0;

 private:
  std::vector<std::string> FilesOfDrag(int effects);
  void DragEnded();
  // Whether the node may be dropped on, and whether it is shown.
  ui::TreeView::DropOffer DraggedOver(std::optional<ui::TreePlace> node, const QPoint& point);
  void ScrollAt(const QPoint& point);
  void Timer2_Tick();
  std::optional<ui::TreePlace> NextDown(ui::TreePlace node) const;
  std::optional<ui::TreePlace> NextUp(ui::TreePlace node) const;
  void TakeDrop(const ui::TreeView::Drop& drop);
  bool MayCopyBeside(const std::string& file);
  void Carry(const ui::TreeView::Drop& drop, const std::string& folder);
  template <class Call>
  void Guarded(Call call) {
    services_.forms().Guarded(call);
  }

  services::Services& services_;
  FolderTree& tree_;
  TreeFiles& files_;
  QTimer Timer2_;
  QPoint dragPoint_;
  bool scrollsUp_ = false;
};

}  // namespace foldertree
