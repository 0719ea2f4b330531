#include "ui/controls/completion/CompletionBox.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QTimer>
#include <QToolButton>

#include <algorithm>
#include <numeric>

namespace ui {

class CompletionBox::Line final : public QLineEdit {
 public:
  explicit Line(CompletionBox& box) : QLineEdit(&box), box_(box) {
    setObjectName(QStringLiteral("Combo1Text"));
    setAccessibleName(CompletionBox::tr("Auto-Complete"));
    setFrame(false);
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    if (event->key() == Qt::Key_Escape) {
      escaping_ = true;  // one that was pressed elsewhere, in a list of the input method say, is not ours
      return;
    }
    if (const QChar key = AcceptingKey(*event); !key.isNull()) return Q_EMIT box_.Accepted(key);
    if (!box_.StepBy(*event)) QLineEdit::keyPressEvent(event);
  }
  void keyReleaseEvent(QKeyEvent* event) override {
    if (event->key() != Qt::Key_Escape || event->isAutoRepeat()) return QLineEdit::keyReleaseEvent(event);
    if (std::exchange(escaping_, false)) Q_EMIT box_.Cancelled();
  }
  void inputMethodEvent(QInputMethodEvent* event) override {
    const QString& text = event->commitString();
    const bool plain = !composing_ && event->preeditString().isEmpty() && event->replacementLength() == 0;
    composing_ = !event->preeditString().isEmpty();
    if (plain && (text == QLatin1String(" ") || text == QLatin1String(">"))) return Q_EMIT box_.Accepted(text.at(0));
    QLineEdit::inputMethodEvent(event);
  }
  void focusInEvent(QFocusEvent* event) override {
    QLineEdit::focusInEvent(event);
    escaping_ = false;
    box_.LineFocused(true, event->reason());
  }
  void focusOutEvent(QFocusEvent* event) override {
    QLineEdit::focusOutEvent(event);
    box_.LineFocused(false, event->reason());
  }
  // There is nowhere to go but back.
  bool focusNextPrevChild(bool) override { return true; }

 private:
  static QChar AcceptingKey(const QKeyEvent& event) {
    const Qt::KeyboardModifiers modifiers = event.modifiers();
    const bool control = modifiers.testFlag(Qt::ControlModifier), alt = modifiers.testFlag(Qt::AltModifier);
    if (modifiers.testFlag(Qt::MetaModifier) || control != alt) return {};
    if (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter) return control ? QChar() : QLatin1Char('\r');
    const QString text = event.text();
    return text == QLatin1String(" ") || text == QLatin1String(">") ? text.at(0) : QChar();
  }

  CompletionBox& box_;
  bool escaping_ = false, composing_ = false;
};

CompletionBox::CompletionBox(RichTextBox& editor)
    : QFrame(&editor), editor_(editor), line_(new Line(*this)), list_(new CompletionList) {
  setObjectName(QStringLiteral("Combo1"));
  setFocusProxy(line_);
  auto* arrow = new QToolButton(this);
  arrow->setArrowType(Qt::DownArrow);
  arrow->setAutoRaise(true);
  arrow->setFocusPolicy(Qt::NoFocus);
  arrow->setAccessibleName(tr("Show or hide the entries"));
  const int height = line_->fontMetrics().height();
  line_->setMinimumHeight(height);
  arrow->setFixedSize(height, height);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(1, 1, 1, 1);
  row->setSpacing(0);
  row->addWidget(line_);
  row->addWidget(arrow);
  connect(line_, &QLineEdit::textEdited, this, &CompletionBox::Typed);
  connect(arrow, &QToolButton::clicked, this, &CompletionBox::ToggleDropDown);
  connect(list_, &CompletionList::Clicked, this, &CompletionBox::Choose);
  connect(list_, &CompletionList::DoubleClicked, this, [this](int chosen) {
    Choose(chosen);
    Q_EMIT Accepted(QLatin1Char('\r'));
  });
  hide();
}

CompletionBox::~CompletionBox() {
  delete list_;
}

void CompletionBox::SetEntries(std::shared_ptr<const CompletionEntries> entries) {
  if (entries == entries_) return;
  entries_ = std::move(entries);
  if (open_) Narrow();
}

QString CompletionBox::Text() const {
  return list_ && list_->Chosen() >= 0 ? list_->ChosenText() : line_->text();
}

// --- Open and closed

void CompletionBox::Open(const QString& text) {
  open_ = true;
  typed_ = text;
  line_->setText(text);
  offersAll_ = entries_->BeginningWith(text).empty();
  if (list_->parentWidget() != editor_.window()) list_->setParent(editor_.window());
  WatchAncestors(true);
  droppedDown_ = true;
  Narrow();
  Place();
  show();
  raise();
  line_->setFocus(Qt::OtherFocusReason);
}

void CompletionBox::Close() {
  if (!open_) return;
  open_ = false;
  WatchAncestors(false);
  const bool hadFocus = line_->hasFocus();
  hide();  // first, or the window that hears of the focus would give it back to where it was
  if (hadFocus) editor_.setFocus(Qt::OtherFocusReason);
  if (list_) list_->Show(entries_, {});
}

void CompletionBox::hideEvent(QHideEvent* event) {
  QFrame::hideEvent(event);
  if (list_) list_->hide();
}

void CompletionBox::LineFocused(bool focused, Qt::FocusReason reason) {
  if (focused) {
    ShowDropDown();
  } else if (reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason &&
             reason != Qt::MenuBarFocusReason && list_) {
    list_->hide();
  }
  update();
}

void CompletionBox::ToggleDropDown() {
  droppedDown_ = !line_->hasFocus() || !droppedDown_;
  line_->setFocus(Qt::OtherFocusReason);
  ShowDropDown();
}

void CompletionBox::ShowDropDown() {
  if (!list_) return;
  const bool shown = open_ && droppedDown_ && list_->count() > 0 && line_->hasFocus();
  if (shown) Place();
  list_->setVisible(shown);
  if (shown) list_->raise();
}

// --- What is typed and what is chosen

void CompletionBox::Typed(const QString& text) {
  typed_ = text;
  if (list_->Chosen() >= 0) TellOf(-1);
  droppedDown_ = true;
  Narrow();
  ShowDropDown();
}

void CompletionBox::Narrow() {
  std::vector<int> rows;
  if (offersAll_) {
    rows.resize(entries_->entries().size());
    std::iota(rows.begin(), rows.end(), 0);
  } else {
    rows = entries_->BeginningWith(typed_);
  }
  list_->Show(entries_, std::move(rows));
}

// From what is typed to the first row, and back again.
bool CompletionBox::StepBy(const QKeyEvent& event) {
  const bool down = event.key() == Qt::Key_Down || event.key() == Qt::Key_PageDown;
  const bool page = event.key() == Qt::Key_PageDown || event.key() == Qt::Key_PageUp;
  if (!down && !page && event.key() != Qt::Key_Up) return false;
  if (event.modifiers() & Qt::AltModifier && !page) return ToggleDropDown(), true;
  if (event.modifiers() & ~Qt::KeyboardModifiers(Qt::KeypadModifier)) return false;
  const int last = list_->count() - 1, now = list_->Chosen();
  if (last < 0) return true;
  droppedDown_ = true;
  ShowDropDown();
  const int step = page ? list_->RowsOfAPage() : 1;
  const int before = page && now > 0 ? 0 : -1;  // a page up stops at the first row
  Choose(down ? std::min(now + step, last) : std::max(now - step, before));
  return true;
}

void CompletionBox::Choose(int row) {
  list_->Choose(row);
  line_->setText(row < 0 ? typed_ : list_->ChosenText());
  TellOf(row);
}

// A screen reader follows to the row, although the keyboard stays in the line.
void CompletionBox::TellOf(int row) {
  if (!QAccessible::isActive()) return;
  QAccessibleEvent event(row < 0 ? static_cast<QObject*>(line_) : list_.data(), QAccessible::Focus);
  if (row >= 0) event.setChild(row);
  QAccessible::updateAccessibility(&event);
}

// --- Place

// At the caret's top left, moved to the left where it would leave the editor.
QRect CompletionBox::PlaceAtCaret() const {
  constexpr int kCharacters = 34;
  const QRect caret = editor_.CaretRect();
  const int width = std::min(fontMetrics().averageCharWidth() * kCharacters, editor_.width());
  int left = caret.left();
  if (left + width > editor_.width()) left = editor_.width() - width;
  // Behind the last line there is only a margin.
  const int room = editor_.viewport()->geometry().bottom() + 1 - caret.top();
  return {left, caret.top(), width, std::clamp(room, minimumSizeHint().height(), line_->fontMetrics().height() + 4)};
}

void CompletionBox::Place() {
  placing_ = false;
  if (!open_ || !list_) return;
  setGeometry(PlaceAtCaret());
  const QRect box(mapTo(editor_.window(), QPoint()), size());
  // While it narrows it stays on its side.
  const int below = editor_.window()->height() - box.bottom() - 1;
  if (!list_->isVisible()) above_ = list_->WantedHeight() > below && box.top() > below;
  list_->Place(box, above_);
}

// It stays with the text when that is scrolled, wrapped anew, or moved with its window.
void CompletionBox::PlaceSoon() {
  if (!open_ || std::exchange(placing_, true)) return;
  QTimer::singleShot(0, this, &CompletionBox::Place);
}

void CompletionBox::WatchAncestors(bool watch) {
  for (QWidget* widget = editor_.viewport(); widget; widget = widget->parentWidget()) {
    widget->removeEventFilter(this);
    if (watch) widget->installEventFilter(this);
    if (widget->isWindow()) break;
  }
}

bool CompletionBox::eventFilter(QObject* watched, QEvent* event) {
  const bool moved = event->type() == QEvent::Move || event->type() == QEvent::Resize;
  const bool painted = event->type() == QEvent::Paint && watched == editor_.viewport();
  if (moved || (painted && PlaceAtCaret() != geometry())) PlaceSoon();
  // While it is open the editor does not take the keyboard, but the mouse leaves for it.
  if (watched == &editor_ && event->type() == QEvent::FocusIn && open_) {
    if (static_cast<QFocusEvent*>(event)->reason() == Qt::MouseFocusReason) {
      Close();
    } else {
      line_->setFocus(Qt::OtherFocusReason);
    }
  }
  return QFrame::eventFilter(watched, event);
}

void CompletionBox::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), palette().base());
  painter.setPen(palette().color(line_->hasFocus() ? QPalette::Highlight : QPalette::Mid));
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void CompletionBox::keyPressEvent(QKeyEvent* event) {
  event->accept();
}
void CompletionBox::keyReleaseEvent(QKeyEvent* event) {
  event->accept();
}

}  // namespace ui
