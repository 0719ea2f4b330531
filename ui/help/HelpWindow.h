// The window that shows a help file: contents and search at the left, the page at the right.
#pragma once

#include "ui/help/HelpBook.h"

#include <QPointer>
#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

class QAction;
class QLineEdit;
class QListWidget;
class QTabWidget;
class QToolBar;
class QTreeWidget;

namespace ui {

class HelpView;

class HelpWindow final : public QWidget {
  Q_OBJECT

 public:
  HelpWindow();
  ~HelpWindow() override;

  // Another book begins a history of its own.
  void SetBook(std::shared_ptr<HelpBook> book);
  const HelpBook* book() const { return book_.get(); }
  // Shows the page and brings the window to the front, also beside a dialog that is waiting for its answer.
  void ShowPlace(const HelpPlace& place);
  void ShowAgain();  // as it was
  const HelpPlace& place() const { return place_; }

 Q_SIGNALS:
  void Outside(const QString& link);  // a link on a page leads out of the book

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QWidget* MakeSide();
  QWidget* MakeSearch();
  QWidget* MakePage();
  QWidget* MakeFindBar();
  void MakeActions(QToolBar& bar);
  QAction* MakeAction(const char* icon, const QString& text, const QList<QKeySequence>& keys,
                      std::function<void()> call);
  void FillContents();
  void SelectInContents();
  void Go(const HelpPlace& place);
  void ShowVisit();
  void Travel(int step);
  void Follow(const QString& link);
  void Search();
  void OpenFindBar();
  void FindOn(bool backward);
  void ComeToFront();

  std::shared_ptr<HelpBook> book_;
  HelpPlace place_;
  struct Visit {
    HelpPlace place;
    int scrolled = 0;
  };
  std::vector<Visit> visits_;
  size_t visit_ = 0;
  QTabWidget* side_;
  QTreeWidget* contents_;
  QLineEdit* searchFor_;
  QListWidget* found_;
  HelpView* view_;
  QWidget* findBar_;
  QLineEdit* find_;
  QAction *back_, *forward_;
};

}  // namespace ui
