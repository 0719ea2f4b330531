#include "ui/help/HelpWindow.h"

#include "ui/controls/Icons.h"
#include "ui/help/HelpView.h"

#include <QAction>
#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QScreen>
#include <QScrollBar>
#include <QSplitter>
#include <QTabWidget>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QWindow>

namespace ui {
namespace {

constexpr int kChapter = Qt::UserRole;
constexpr int kSearchDelay = 250;  // milliseconds after a key
constexpr size_t kMostVisits = 200;

}  // namespace

HelpWindow::HelpWindow() {
  setObjectName(QStringLiteral("frmHelp"));
  setWindowTitle(tr("Help"));
  setWindowIcon(ApplicationIcon());
  setAttribute(Qt::WA_QuitOnClose, false);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  auto* bar = new QToolBar;
  bar->setAccessibleName(tr("Help"));
  column->addWidget(bar);
  auto* splitter = new QSplitter;
  splitter->addWidget(MakeSide());
  splitter->addWidget(MakePage());
  splitter->setStretchFactor(1, 1);
  splitter->setSizes({260, 640});
  splitter->setChildrenCollapsible(false);
  column->addWidget(splitter, 1);
  MakeActions(*bar);
  resize(QSize(920, 660).boundedTo(QGuiApplication::primaryScreen()->availableSize() * 9 / 10));
}

HelpWindow::~HelpWindow() = default;

void HelpWindow::MakeActions(QToolBar& bar) {
  back_ = MakeAction("help-back", tr("Back"), {QKeySequence(Qt::ALT | Qt::Key_Left)}, [this] { Travel(-1); });
  forward_ = MakeAction("help-forward", tr("Forward"), {QKeySequence(Qt::ALT | Qt::Key_Right)}, [this] { Travel(1); });
  QAction* const start = MakeAction("help-start", tr("First page"), {QKeySequence(Qt::ALT | Qt::Key_Home)}, [this] {
    if (book_) Go(book_->start());
  });
  QAction* const find =
      MakeAction("find", tr("Find on this page"), {QKeySequence(Qt::CTRL | Qt::Key_F)}, [this] { OpenFindBar(); });
  bar.addActions({back_, forward_, start, find});
  MakeAction("", tr("Find next"), {QKeySequence(Qt::Key_F3)}, [this] { FindOn(false); });
  MakeAction("", tr("Find previous"), {QKeySequence(Qt::SHIFT | Qt::Key_F3)}, [this] { FindOn(true); });
  MakeAction("", tr("Larger"), {QKeySequence(Qt::CTRL | Qt::Key_Plus), QKeySequence(Qt::CTRL | Qt::Key_Equal)},
             [this] { view_->Zoom(1); });
  MakeAction("", tr("Smaller"), {QKeySequence(Qt::CTRL | Qt::Key_Minus)}, [this] { view_->Zoom(-1); });
  MakeAction("", tr("Usual size"), {QKeySequence(Qt::CTRL | Qt::Key_0)}, [this] { view_->Zoom(0); });
  MakeAction("", tr("Contents"), {QKeySequence(Qt::ALT | Qt::Key_C)}, [this] {
    side_->setCurrentIndex(0);
    contents_->setFocus();
  });
  MakeAction("", tr("Search"), {QKeySequence(Qt::ALT | Qt::Key_S)}, [this] {
    side_->setCurrentIndex(1);
    searchFor_->setFocus();
    searchFor_->selectAll();
  });
  MakeAction("", tr("Contents or page"), {QKeySequence(Qt::Key_F6)}, [this] {
    if (!view_->hasFocus()) return view_->setFocus();
    side_->currentIndex() == 0 ? contents_->setFocus() : searchFor_->setFocus();
  });
}

QAction* HelpWindow::MakeAction(const char* icon, const QString& text, const QList<QKeySequence>& keys,
                                std::function<void()> call) {
  auto* action = new QAction(ThemedIcon(icon), text, this);
  action->setShortcuts(keys);
  action->setToolTip(QStringLiteral("%1 (%2)").arg(text, keys.front().toString(QKeySequence::NativeText)));
  connect(action, &QAction::triggered, this, std::move(call));
  addAction(action);
  return action;
}

QWidget* HelpWindow::MakeSide() {
  side_ = new QTabWidget;
  contents_ = new QTreeWidget;
  contents_->setHeaderHidden(true);
  contents_->setAccessibleName(tr("Contents"));
  connect(contents_, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
    const size_t chapter = item ? item->data(0, kChapter).toULongLong() : SIZE_MAX;
    if (book_ && chapter < book_->contents().size() && book_->Has(book_->contents()[chapter].place))
      Go(book_->contents()[chapter].place);
  });
  connect(contents_, &QTreeWidget::itemActivated, this, [this] { view_->setFocus(); });
  side_->addTab(contents_, tr("Contents"));
  side_->setTabToolTip(0, tr("Contents (Alt+C)"));
  side_->addTab(MakeSearch(), tr("Search"));
  side_->setTabToolTip(1, tr("Search (Alt+S)"));
  return side_;
}

QWidget* HelpWindow::MakeSearch() {
  auto* page = new QWidget;
  auto* column = new QVBoxLayout(page);
  auto* label = new QLabel(tr("Words to look for:"));
  searchFor_ = new QLineEdit;
  searchFor_->setAccessibleName(label->text());
  searchFor_->setClearButtonEnabled(true);
  found_ = new QListWidget;
  found_->setAccessibleName(tr("Found pages"));
  found_->setUniformItemSizes(true);
  column->addWidget(label);
  column->addWidget(searchFor_);
  column->addWidget(found_, 1);
  auto* delay = new QTimer(this);
  delay->setSingleShot(true);
  delay->setInterval(kSearchDelay);
  connect(delay, &QTimer::timeout, this, &HelpWindow::Search);
  connect(searchFor_, &QLineEdit::textChanged, delay, qOverload<>(&QTimer::start));
  connect(searchFor_, &QLineEdit::returnPressed, this, [this, delay] {
    if (delay->isActive()) Search();
    delay->stop();
    if (found_->count() == 0 || !found_->isEnabled()) return;
    found_->setCurrentRow(0);
    found_->setFocus();
  });
  connect(found_, &QListWidget::currentRowChanged, this, [this](int row) {
    const QListWidgetItem* item = found_->item(row);
    if (!item || !found_->isEnabled()) return;
    Go({item->data(kChapter).toString().toStdString(), {}});
    view_->Mark(searchFor_->text().simplified().split(u' ', Qt::SkipEmptyParts));
  });
  connect(found_, &QListWidget::itemActivated, this, [this] { view_->setFocus(); });
  return page;
}

QWidget* HelpWindow::MakePage() {
  auto* page = new QWidget;
  auto* column = new QVBoxLayout(page);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  view_ = new HelpView;
  connect(view_, &HelpView::LinkClicked, this, &HelpWindow::Follow);
  column->addWidget(view_, 1);
  column->addWidget(MakeFindBar());
  return page;
}

QWidget* HelpWindow::MakeFindBar() {
  findBar_ = new QWidget;
  auto* row = new QHBoxLayout(findBar_);
  row->setContentsMargins(8, 4, 8, 4);
  auto* label = new QLabel(tr("Find:"));
  find_ = new QLineEdit;
  find_->setAccessibleName(tr("Find on this page"));
  auto* close = new QToolButton;
  close->setText(tr("Close"));
  row->addWidget(label);
  row->addWidget(find_, 1);
  row->addWidget(close);
  connect(find_, &QLineEdit::returnPressed, this, [this] { FindOn(false); });
  connect(close, &QToolButton::clicked, this, [this] {
    findBar_->hide();
    view_->setFocus();
  });
  findBar_->hide();
  return findBar_;
}

void HelpWindow::SetBook(std::shared_ptr<HelpBook> book) {
  view_->Forget();
  book_ = std::move(book);
  visits_.clear();
  visit_ = 0;
  place_ = {};
  searchFor_->clear();
  found_->clear();
  setWindowTitle(book_->title().isEmpty() ? tr("Help") : book_->title());
  FillContents();
}

void HelpWindow::FillContents() {
  const QSignalBlocker silent(contents_);
  contents_->clear();
  std::vector<QTreeWidgetItem*> above;
  for (size_t i = 0; i < book_->contents().size(); ++i) {
    const HelpChapter& chapter = book_->contents()[i];
    above.resize(std::min(above.size(), static_cast<size_t>(chapter.depth)));
    auto* item = above.empty() ? new QTreeWidgetItem(contents_) : new QTreeWidgetItem(above.back());
    item->setText(0, chapter.title);
    item->setData(0, kChapter, QVariant::fromValue<qulonglong>(i));
    above.push_back(item);
  }
  contents_->expandToDepth(0);
}

void HelpWindow::SelectInContents() {
  const QSignalBlocker silent(contents_);
  const QTreeWidgetItem* const now = contents_->currentItem();
  const auto& chapters = book_->contents();
  if (now && chapters[now->data(0, kChapter).toULongLong()].place.page == place_.page) return;
  for (QTreeWidgetItemIterator item(contents_); *item; ++item) {
    if (chapters[(*item)->data(0, kChapter).toULongLong()].place.page != place_.page) continue;
    return contents_->setCurrentItem(*item);
  }
  contents_->setCurrentItem(nullptr);
}

void HelpWindow::Go(const HelpPlace& place) {
  if (!book_ || !book_->Has(place)) return;
  if (!visits_.empty()) visits_[visit_].scrolled = view_->verticalScrollBar()->value();
  if (visits_.empty() || visits_[visit_].place != place) {
    visits_.resize(std::min(visits_.size(), visit_ + 1));
    if (visits_.size() >= kMostVisits) visits_.erase(visits_.begin());
    visits_.push_back({place});
    visit_ = visits_.size() - 1;
  }
  ShowVisit();
}

void HelpWindow::ShowVisit() {
  place_ = visits_[visit_].place;
  view_->Show(*book_, place_);
  view_->setAccessibleName(book_->TitleOf(place_));
  SelectInContents();
  back_->setEnabled(visit_ > 0);
  forward_->setEnabled(visit_ + 1 < visits_.size());
}

void HelpWindow::Travel(int step) {
  if (visits_.empty() || (step < 0 && visit_ == 0) || (step > 0 && visit_ + 1 >= visits_.size())) return;
  visits_[visit_].scrolled = view_->verticalScrollBar()->value();
  visit_ = step < 0 ? visit_ - 1 : visit_ + 1;
  ShowVisit();
  view_->verticalScrollBar()->setValue(visits_[visit_].scrolled);
}

void HelpWindow::Follow(const QString& link) {
  if (!book_) return;
  if (const auto place = book_->Resolve(place_.page, link)) return Go(*place);
  Q_EMIT Outside(link);
}

void HelpWindow::Search() {
  if (!book_) return;
  const QSignalBlocker silent(found_);
  found_->clear();
  for (const HelpFound& each : book_->Search(searchFor_->text().simplified())) {
    auto* item = new QListWidgetItem(each.title, found_);
    item->setData(kChapter, QString::fromStdString(each.place.page));
    item->setToolTip(each.excerpt.toHtmlEscaped());
  }
  const bool none = found_->count() == 0 && !searchFor_->text().trimmed().isEmpty();
  if (none) new QListWidgetItem(tr("No page has all of these words."), found_);
  found_->setEnabled(!none);
}

void HelpWindow::OpenFindBar() {
  findBar_->show();
  find_->setFocus();
  find_->selectAll();
}

void HelpWindow::FindOn(bool backward) {
  if (find_->text().isEmpty()) return OpenFindBar();
  if (!view_->FindText(find_->text(), backward)) QApplication::beep();
}

void HelpWindow::ShowPlace(const HelpPlace& place) {
  Go(place);
  view_->setFocus();
  ComeToFront();
}

void HelpWindow::ShowAgain() {
  ComeToFront();
}

// A window that belongs to the dialog is the only one that can be used beside it.
void HelpWindow::ComeToFront() {
  if (isMinimized()) showNormal();
  show();
  QWidget* const dialog = QApplication::activeModalWidget();
  windowHandle()->setTransientParent(dialog ? dialog->window()->windowHandle() : nullptr);
  raise();
  activateWindow();
}

void HelpWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Escape) return QWidget::keyPressEvent(event);
  if (!findBar_->isVisible()) return static_cast<void>(close());
  findBar_->hide();
  view_->setFocus();
}

}  // namespace ui
