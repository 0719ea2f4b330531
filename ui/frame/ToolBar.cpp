#include "ui/frame/ToolBar.h"

#include "ui/controls/Icons.h"

#include <QCoreApplication>
#include <QMenu>
#include <QMouseEvent>
#include <QToolButton>

#include <algorithm>

namespace ui {
namespace {

constexpr std::string_view kLayoutMark = "buttons";
constexpr char kBetween = ',', kHidden = '!';
constexpr std::string_view kSeparator = "|";

QString Translated(const char* text) {
  return QCoreApplication::translate("Toolbar", text);
}

bool SameKey(std::string_view a, std::string_view b) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
  return std::ranges::equal(a, b, {}, lower, lower);
}

std::string_view TakeWord(std::string_view& text) {
  const size_t end = std::min(text.find(kBetween), text.size());
  const std::string_view word = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return word;
}

}  // namespace

ToolBar::ToolBar(QWidget* parent) : QToolBar(parent) {
  setMovable(false);
  setFloatable(false);
  // The toolkit's own button for what there is no room for.
  if (auto* more = findChild<QToolButton*>(QStringLiteral("qt_toolbar_ext_button")))
    more->setAccessibleName(tr("More buttons"));
}

void ToolBar::SetButtons(std::span<const ToolBarRow> rows) {
  rows_.assign(rows.begin(), rows.end());
  for (size_t i = 0; i < rows_.size(); ++i) MakeButton(i);
  Place(FirstPlaces());
}

void ToolBar::MakeButton(size_t i) {
  const ToolBarRow& row = rows_[i];
  auto* button = new ToolButton(row.toggles, this);
  button->setObjectName(QLatin1String(row.key));
  button->setIcon(ThemedIcon(row.icon));
  button->setIconSize(iconSize());
  button->setToolTip(Translated(row.longText));
  button->setAccessibleName(Translated(row.shortText));
  button->setAccessibleDescription(Translated(row.longText));
  button->setAutoRaise(style_ == 1);
  connect(this, &QToolBar::iconSizeChanged, button, &QToolButton::setIconSize);
  if (!row.menu.empty()) {
    auto* menu = new QMenu(button);
    for (size_t k = 0; k < row.menu.size(); ++k)
      connect(menu->addAction(Translated(row.menu[k].caption)), &QAction::triggered, this,
              [this, i, k] { Q_EMIT MenuClicked(i, k); });
    button->setMenu(menu);
    button->setPopupMode(QToolButton::MenuButtonPopup);
  }
  if (row.face == FaceClick::kRuns) connect(button, &QToolButton::clicked, this, [this, i] { Q_EMIT Clicked(i); });
  if (row.face == FaceClick::kOpensMenu) connect(button, &QToolButton::clicked, button, &QToolButton::showMenu);
  button->installEventFilter(this);
  buttons_.push_back(button);
  actions_.push_back(addWidget(button));
}

std::optional<size_t> ToolBar::Find(std::string_view key) const {
  const auto found = std::ranges::find_if(rows_, [key](const ToolBarRow& row) { return SameKey(row.key, key); });
  if (found == rows_.end()) return std::nullopt;
  return static_cast<size_t>(found - rows_.begin());
}

std::optional<size_t> ToolBar::FindMenu(size_t row, std::string_view key) const {
  const std::span<const ToolBarMenuRow> menu = rows_[row].menu;
  const auto found = std::ranges::find_if(menu, [key](const ToolBarMenuRow& item) { return SameKey(item.key, key); });
  if (found == menu.end()) return std::nullopt;
  return static_cast<size_t>(found - menu.begin());
}

QString ToolBar::description(size_t row) const {
  return Translated(rows_[row].shortText);
}

void ToolBar::SetIcon(size_t row, const char* icon) {
  buttons_[row]->setIcon(ThemedIcon(icon));
}

void ToolBar::SetMenuEnabled(size_t row, size_t item, bool enabled) {
  buttons_[row]->menu()->actions().at(static_cast<qsizetype>(item))->setEnabled(enabled);
}

bool ToolBar::isMenuEnabled(size_t row, size_t item) const {
  return buttons_[row]->menu()->actions().at(static_cast<qsizetype>(item))->isEnabled();
}

void ToolBar::SetStyle(int style) {
  style_ = style;
  for (ToolButton* button : buttons_) button->setAutoRaise(style == 1);
}

std::vector<ToolBarPlace> ToolBar::FirstPlaces() const {
  std::vector<ToolBarPlace> places;
  for (size_t i = 0; i < rows_.size(); ++i) {
    if (rows_[i].newGroup) places.push_back({});
    places.push_back({i});
  }
  return places;
}

// Each missing one behind the one it stands behind in the table.
std::vector<ToolBarPlace> ToolBar::WithMissing(std::vector<ToolBarPlace> places) const {
  const auto find = [&places](size_t row) { return std::ranges::find(places, row, &ToolBarPlace::row); };
  for (size_t i = 0; i < rows_.size(); ++i)
    if (find(i) == places.end()) places.insert(i == 0 ? places.begin() : std::next(find(i - 1)), {i});
  return places;
}

void ToolBar::Place(std::vector<ToolBarPlace> places) {
  places_ = std::move(places);
  for (QAction* separator : separators_) delete separator;
  separators_.clear();
  for (QAction* action : actions_) removeAction(action);
  bool separate = false, shownBefore = false;
  for (const ToolBarPlace& place : places_) {
    if (!place.row) {
      separate = shownBefore;
      continue;
    }
    if (place.visible && std::exchange(separate, false)) separators_.push_back(addSeparator());
    addAction(actions_[*place.row]);
    actions_[*place.row]->setVisible(place.visible);
    shownBefore = shownBefore || place.visible;
  }
}

void ToolBar::Arrange(std::vector<ToolBarPlace> places) {
  places = WithMissing(std::move(places));
  if (places == places_) return;
  Place(std::move(places));
  Q_EMIT LayoutChanged();
}

std::string ToolBar::Layout() const {
  std::string text(kLayoutMark);
  for (const ToolBarPlace& place : places_) {
    text += kBetween;
    if (!place.visible) text += kHidden;
    text += place.row ? std::string_view(rows_[*place.row].key) : kSeparator;
  }
  return text;
}

bool ToolBar::Restore(std::string_view text) {
  if (TakeWord(text) != kLayoutMark) return false;
  std::vector<ToolBarPlace> places;
  std::vector<bool> seen(rows_.size());
  while (!text.empty()) {
    std::string_view word = TakeWord(text);
    if (word == kSeparator) {
      // No more of them than buttons have a use for.
      if (!places.empty() && places.back().row) places.push_back({});
      continue;
    }
    const bool hidden = word.starts_with(kHidden);
    const std::optional<size_t> row = Find(word.substr(hidden ? 1 : 0));
    if (!row || seen[*row]) continue;
    seen[*row] = true;
    places.push_back({row, !hidden});
  }
  if (!std::ranges::count(seen, true)) return false;
  Place(WithMissing(std::move(places)));
  return true;
}

bool ToolBar::eventFilter(QObject* watched, QEvent* event) {
  const auto button = std::ranges::find(buttons_, watched);
  if (button == buttons_.end()) return QToolBar::eventFilter(watched, event);
  if (event->type() == QEvent::Enter) Q_EMIT Hovered(description(static_cast<size_t>(button - buttons_.begin())));
  if (event->type() == QEvent::Leave) Q_EMIT Hovered({});
  // A disabled button would swallow it.
  const bool press = event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick;
  if (press && static_cast<QMouseEvent*>(event)->button() == Qt::RightButton) {
    Q_EMIT RightPressed();
    return true;
  }
  return false;
}

void ToolBar::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::RightButton) {
    Q_EMIT RightPressed();
    event->accept();
  } else {
    QToolBar::mousePressEvent(event);
  }
}

}  // namespace ui
