// The drop-down of a completion box: the entries that are offered, one of which may be chosen.
#pragma once

#include "ui/controls/completion/CompletionEntries.h"

#include <QListView>

#include <memory>

namespace ui {

// Never takes the focus: its box has the keyboard and chooses by the arrow keys.
class CompletionList : public QListView {
  Q_OBJECT

 public:
  explicit CompletionList(QWidget* parent = nullptr);
  ~CompletionList() override;

  // Nothing is chosen then.
  void Show(std::shared_ptr<const CompletionEntries> entries, std::vector<int> rows);
  int count() const;
  int Chosen() const;  // -1 = none
  QString ChosenText() const;
  void Choose(int row);
  // Beside the box's rectangle, inside the parent: below it, or above where that is wanted.
  void Place(const QRect& box, bool above);
  // As high as it would like to be there.
  int WantedHeight() const;
  int RowsOfAPage() const;

 Q_SIGNALS:
  void Clicked(int row);
  void DoubleClicked(int row);

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent*) override {}
  void mouseReleaseEvent(QMouseEvent*) override {}
  void mouseDoubleClickEvent(QMouseEvent* event) override;

 private:
  class Model;
  int WantedWidth() const;

  Model* model_;
};

}  // namespace ui
