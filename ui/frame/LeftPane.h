// The strip at the left of the document area: the project list and its toolbar above the folder tree and its own.
#pragma once

#include "ui/controls/DriveBox.h"
#include "ui/controls/ListBox.h"
#include "ui/controls/PictureBox.h"
#include "ui/controls/TreeView.h"
#include "ui/frame/PaneLayout.h"
#include "ui/frame/ToolBar.h"

#include <QWidget>

class QLabel;

namespace ui {

class LeftPane : public QWidget {
  Q_OBJECT

 public:
  explicit LeftPane(QWidget* parent = nullptr);

  ListBox& List1() { return *List1_; }
  ToolBar& Toolbar2() { return *Toolbar2_; }
  PictureBox& Picture1() { return *Picture1_; }
  QLabel& Label1() { return *Label1_; }
  DriveBox& Drive1() { return *Drive1_; }
  TreeView& TreeView1() { return *TreeView1_; }
  ToolBar& Toolbar3() { return *Toolbar3_; }

  // Of List1 and TreeView1, in points.
  void SetListFontSize(double points);

  QSize minimumSizeHint() const override;
  QSize sizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  PaneMetrics Metrics() const;
  void LayOut();

  ListBox* List1_;
  ToolBar* Toolbar2_;
  PictureBox* Picture1_;  // at the right of Toolbar2
  QLabel* Label1_;
  DriveBox* Drive1_;
  TreeView* TreeView1_;
  ToolBar* Toolbar3_;
};

}  // namespace ui
