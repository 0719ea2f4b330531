#include "ui/controls/DialogControls.h"

#include <QHBoxLayout>
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

TextBox::TextBox(const char* name) {
  setObjectName(QLatin1String(name));
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

}  // namespace ui
