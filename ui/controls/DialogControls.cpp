#include "ui/controls/DialogControls.h"

#include "ui/PathText.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QKeySequence>
#include <QShortcut>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace ui {

Label::Label(const char* name, const QString& text) {
  setObjectName(QLatin1String(name));
  setTextFormat(Qt::PlainText);
  setWordWrap(true);
  SetText(text);
}

void Label::SetText(const QString& text) {
  setText(QString(text).replace(QLatin1String("\r\n"), QLatin1String("\n")));
}

Button::Button(const char* name, const QString& caption, std::function<void()> click) : QPushButton(caption) {
  setObjectName(QLatin1String(name));
  connect(this, &QPushButton::clicked, this, std::move(click));
}

CheckBox::CheckBox(const char* name, const QString& caption) : QCheckBox(caption) {
  setObjectName(QLatin1String(name));
}

OptionButton::OptionButton(const char* name, const QString& caption) : QRadioButton(caption) {
  setObjectName(QLatin1String(name));
}

TextBox::TextBox(const char* name) {
  setObjectName(QLatin1String(name));
}

bool TextBox::MayType(const QString& text) const {
  return typable_.isEmpty() || std::all_of(text.begin(), text.end(), [this](QChar c) { return typable_.contains(c); });
}

void TextBox::keyPressEvent(QKeyEvent* event) {
  const bool types = event->key() != Qt::Key_Delete && event->key() != Qt::Key_Escape;
  if (!types || MayType(event->text())) return QLineEdit::keyPressEvent(event);
  // It may be a mnemonic.
  if (event->modifiers() & Qt::AltModifier) event->ignore();
}

void TextBox::inputMethodEvent(QInputMethodEvent* event) {
  if (MayType(event->commitString())) return QLineEdit::inputMethodEvent(event);
  QInputMethodEvent composing(event->preeditString(), event->attributes());
  QLineEdit::inputMethodEvent(&composing);
}

void PathBox::SetPath(std::string path) {
  path_ = std::move(path);
  SetText(DisplayText(path_));
}

std::string PathBox::Path() const {
  return EditedName(path_, Text());
}

void LayOutInRows(Control& form, const std::vector<std::vector<Control*>>& rows) {
  auto* column = new QVBoxLayout(&form);
  Control* before = nullptr;
  for (const auto& row : rows) {
    auto* line = new QHBoxLayout;
    column->addLayout(line);
    const auto isButton = [](const Control* control) { return qobject_cast<const QPushButton*>(control); };
    if (std::all_of(row.begin(), row.end(), isButton)) line->addStretch();
    for (Control* control : row) {
      line->addWidget(control);
      if (before) QWidget::setTabOrder(before, control);
      before = control;
    }
  }
}

namespace {

// Also while it is hidden, so that nothing moves when it appears.
void KeepPlace(Control& control) {
  QSizePolicy policy = control.sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  control.setSizePolicy(policy);
}

QHBoxLayout* InColumns(const std::vector<std::vector<Control*>>& columns) {
  auto* side = new QHBoxLayout;
  for (const auto& column : columns) {
    auto* below = new QVBoxLayout;
    for (Control* control : column) below->addWidget(control);
    below->addStretch();
    side->addLayout(below);
    side->addSpacing(12);
  }
  side->addStretch();
  return side;
}

}  // namespace

void OnKey(Control& form, const char* key, std::function<void()> call) {
  auto* shortcut = new QShortcut(QKeySequence::fromString(QLatin1String(key), QKeySequence::PortableText), &form);
  QObject::connect(shortcut, &QShortcut::activated, &form, std::move(call));
}

void LayOutFields(Control& form, const FieldForm& contents) {
  auto* whole = new QHBoxLayout(&form);
  auto* left = new QVBoxLayout;
  auto* right = new QVBoxLayout;
  whole->addLayout(left, 1);
  whole->addSpacing(6);
  whole->addLayout(right);
  auto* grid = new QGridLayout;
  grid->setColumnStretch(1, 1);
  left->addLayout(grid);
  std::vector<Control*> order;
  for (const FieldForm::Field& field : contents.fields) {
    const int row = grid->rowCount();
    field.label->setWordWrap(false);
    field.label->setBuddy(field.field);
    field.field->setAccessibleName(field.label->text().remove(QLatin1Char('&')));
    grid->addWidget(field.label, row, 0);
    grid->addWidget(field.field, row, 1);
    order.push_back(field.field);
  }
  left->addSpacing(6);
  left->addLayout(InColumns(contents.options));
  for (const auto& column : contents.options) order.insert(order.end(), column.begin(), column.end());
  left->addStretch();
  left->addWidget(contents.line);
  KeepPlace(*contents.line);
  for (Button* button : contents.buttons) right->addWidget(button);
  order.insert(order.end(), contents.buttons.begin(), contents.buttons.end());
  right->addStretch();
  for (size_t i = 1; i < order.size(); ++i) QWidget::setTabOrder(order[i - 1], order[i]);
}

}  // namespace ui
