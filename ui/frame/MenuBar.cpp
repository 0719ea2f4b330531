#include "ui/frame/MenuBar.h"

#include "ui/PathText.h"
#include "ui/controls/Icons.h"
#include "ui/frame/FrameForm.h"
#include "ui/frame/LeftPane.h"
#include "ui/frame/PaneForm.h"

#include <QApplication>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>

namespace ui {
namespace {

QString CaptionOf(const MenuRow& row) {
  const QString caption = QCoreApplication::translate("Menu", row.caption);
  return *row.hint ? caption + QLatin1Char('\t') + QLatin1String(row.hint) : caption;
}

// A path can be longer than the screen is wide. Neither "&&" nor a surrogate pair is cut in two.
QString Shortened(const QString& caption) {
  constexpr qsizetype kLongest = 120, kBegin = 40, kEnd = 70;
  if (caption.size() <= kLongest) return caption;
  const auto splits = [&](qsizetype at) {
    return caption[at - 1] == QLatin1Char('&') || caption[at - 1].isHighSurrogate();
  };
  qsizetype begin = kBegin, end = caption.size() - kEnd;
  while (begin < caption.size() && splits(begin)) ++begin;
  while (end < caption.size() && splits(end)) ++end;
  return begin < end ? caption.left(begin) + QChar(0x2026) + caption.mid(end) : caption;
}

}  // namespace

MenuBar::MenuBar(QMenuBar& bar, std::span<const MenuRow> rows)
    : rows_(rows.begin(), rows.end()), actions_(rows.size()), menus_(rows.size()), lists_(rows.size()) {
  Build(bar);
  SetDocumentActive(false);
}

MenuBar::MenuBar(FrameForm& frame, std::span<const MenuRow> rows) : MenuBar(frame.menuBar(), rows) {
  connect(qApp, &QApplication::focusChanged, this, [this, &frame](QWidget*, QWidget* now) {
    if (now) SetPaneFocused(frame.leftPane().isAncestorOf(now) || IsInPane(*now));
  });
}

MenuBar::~MenuBar() = default;

void MenuBar::Build(QMenuBar& bar) {
  std::vector<QMenu*> open;
  for (size_t i = 0; i < rows_.size(); ++i) {
    const MenuRow& row = rows_[i];
    if (row.kind == MenuRowKind::kEnd) {
      open.pop_back();
      continue;
    }
    menus_[i] = open.empty() ? nullptr : open.back();
    if (row.kind == MenuRowKind::kMenu) {
      QMenu* menu = open.empty() ? bar.addMenu(CaptionOf(row)) : open.back()->addMenu(CaptionOf(row));
      menu->setSeparatorsCollapsible(false);
      connect(menu, &QMenu::aboutToShow, this, [this, i] { Q_EMIT AboutToShow(i); });
      open.push_back(menu);
      menus_[i] = menu;
      actions_[i] = menu->menuAction();
    } else if (row.kind != MenuRowKind::kList) {
      actions_[i] = BuildItem(i, *open.back());
    }
    if (actions_[i]) actions_[i]->setObjectName(QLatin1String(row.name));
  }
}

QAction* MenuBar::BuildItem(size_t i, QMenu& menu) {
  const MenuRow& row = rows_[i];
  if (row.kind == MenuRowKind::kSeparator) return menu.addSeparator();
  QAction* action = menu.addAction(CaptionOf(row));
  action->setCheckable(row.checkable);
  if (*row.icon) action->setIcon(ThemedIcon(row.icon));
  action->setMenuRole(QAction::NoRole);
  connect(action, &QAction::triggered, this, [this, i] { Q_EMIT Triggered(i); });
  return action;
}

void MenuBar::SetKeys() {
  for (size_t i = 0; i < rows_.size(); ++i) {
    if (!actions_[i] || rows_[i].kind == MenuRowKind::kSeparator) continue;
    const char* key = documentActive_ ? rows_[i].keyWithDocument : rows_[i].keyWithoutDocument;
    if (paneFocused_ && rows_[i].editsDocument) key = "";
    actions_[i]->setShortcut(QKeySequence::fromString(QLatin1String(key), QKeySequence::PortableText));
  }
}

void MenuBar::SetPaneFocused(bool focused) {
  if (paneFocused_ == focused) return;
  paneFocused_ = focused;
  SetKeys();
}

void MenuBar::SetDocumentActive(bool active) {
  documentActive_ = active;
  for (size_t i = 0; i < rows_.size(); ++i) {
    if (!actions_[i] || rows_[i].kind == MenuRowKind::kSeparator) continue;
    actions_[i]->setVisible(active || !rows_[i].documentOnly);
  }
  SetKeys();
  for (size_t i = 0; i < rows_.size(); ++i)
    if (rows_[i].kind == MenuRowKind::kMenu) TidySeparators(*menus_[i]);
}

void MenuBar::TidySeparators(QMenu& menu) {
  QAction* pending = nullptr;
  bool itemBefore = false;
  for (QAction* action : menu.actions()) {
    if (action->isSeparator()) {
      action->setVisible(false);
      if (itemBefore) pending = action;
    } else if (action->isVisible()) {
      if (pending) pending->setVisible(true);
      pending = nullptr;
      itemBefore = true;
    }
  }
}

void MenuBar::SetEnabled(size_t row, bool enabled) {
  actions_[row]->setEnabled(enabled);
}

void MenuBar::SetChecked(size_t row, bool checked) {
  actions_[row]->setChecked(checked);
}

void MenuBar::SetCaption(size_t row, const QString& caption) {
  actions_[row]->setText(DoubleAmpersands(caption));
}

void MenuBar::SetList(size_t row, const std::vector<MenuListEntry>& entries) {
  for (QAction* old : lists_[row]) old->deleteLater(), menus_[row]->removeAction(old);
  lists_[row].clear();
  for (size_t k = 0; k < entries.size(); ++k) {
    QAction* action = menus_[row]->addAction(Shortened(entries[k].caption));
    action->setCheckable(entries[k].checked.has_value());
    action->setChecked(entries[k].checked.value_or(false));
    connect(action, &QAction::triggered, this, [this, row, k] { Q_EMIT ListTriggered(row, k); });
    lists_[row].push_back(action);
  }
  TidySeparators(*menus_[row]);
}

}  // namespace ui
