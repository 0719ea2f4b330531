#include "ui/controls/ComboBox.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSignalBlocker>

#include <utility>

namespace ui {

ComboBox::ComboBox(const char* name) {
  setObjectName(QLatin1String(name));
  setEditable(true);
  setInsertPolicy(NoInsert);
  // Completing would change what is typed.
  setCompleter(nullptr);
  setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
  setMinimumContentsLength(28);
  lineEdit()->setMaxLength(kMostText);
  lineEdit()->installEventFilter(this);
  connect(this, &QComboBox::editTextChanged, this, &ComboBox::Change);
}

QString ComboBox::Text() const {
  QString text = currentText();
  text.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
  return text.replace(QLatin1Char('\n'), QLatin1String("\r\n"));
}

void ComboBox::SetText(const QString& text) {
  setEditText(text);
}

void ComboBox::AddTextToList() {
  const QSignalBlocker quiet(this);
  const QString text = currentText();
  int entry = findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive);
  if (entry < 0) insertItem(entry = 0, text);
  const int cursor = lineEdit()->cursorPosition();
  const int begin = lineEdit()->selectionStart(), length = lineEdit()->selectionLength();
  setCurrentIndex(entry);
  lineEdit()->setCursorPosition(cursor);
  if (begin >= 0) lineEdit()->setSelection(begin, length);
}

void ComboBox::focusInEvent(QFocusEvent* event) {
  QComboBox::focusInEvent(event);
  if (event->reason() == Qt::PopupFocusReason) return;
  lineEdit()->selectAll();
  clickedInto_ = event->reason() == Qt::MouseFocusReason;
}

// The key of a control that is disabled just now is no text.
void ComboBox::keyPressEvent(QKeyEvent* event) {
  const bool alt = event->modifiers() & Qt::AltModifier && !(event->modifiers() & Qt::ControlModifier);
  if (alt && !event->text().isEmpty()) return event->ignore();
  QComboBox::keyPressEvent(event);
}

// The press that brings the focus takes the selection away again, unless it begins to select a part.
bool ComboBox::eventFilter(QObject* watched, QEvent* event) {
  if (watched == lineEdit() && event->type() == QEvent::MouseButtonRelease && std::exchange(clickedInto_, false) &&
      !lineEdit()->hasSelectedText()) {
    lineEdit()->selectAll();
  }
  return QComboBox::eventFilter(watched, event);
}

}  // namespace ui
