// The controls that small dialogs are made of, with just the operations these use. Every text is plain text.
#pragma once

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace ui {

using Control = QWidget;

class Label : public QLabel {
  Q_OBJECT

 public:
  Label(const char* name, const QString& text);
  void SetText(const QString& text);  // CR LF breaks its lines
};

class Button : public QPushButton {
  Q_OBJECT

 public:
  Button(const char* name, const QString& caption, std::function<void()> click);
};

class CheckBox : public QCheckBox {
  Q_OBJECT

 public:
  CheckBox(const char* name, const QString& caption);
  bool Value() const { return isChecked(); }
  void SetValue(bool on) { setChecked(on); }
};

// One of several in a form, of which one is chosen.
class OptionButton : public QRadioButton {
  Q_OBJECT

 public:
  OptionButton(const char* name, const QString& caption);
  bool Value() const { return isChecked(); }
  void SetValue(bool on) { setChecked(on); }
};

class TextBox : public QLineEdit {
  Q_OBJECT

 public:
  explicit TextBox(const char* name);
  QString Text() const { return text(); }
  void SetText(const QString& text) { setText(text); }
  // Other characters cannot be typed, nor keys pressed that stand for control characters but these; pasting takes all.
  void SetTypable(QString characters) { typable_ = std::move(characters); }

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void inputMethodEvent(QInputMethodEvent* event) override;

 private:
  bool MayType(const QString& text) const;
  QString typable_;
};

// A path, which is bytes: those that are no text come back unless they are edited themselves.
class PathBox final : public TextBox {
  Q_OBJECT

 public:
  explicit PathBox(const char* name) : TextBox(name) {}
  void SetPath(std::string path);
  std::string Path() const;

 private:
  std::string path_;
};

// Lays out the form in rows from top to bottom; a row's controls stand side by side. Rows of buttons alone stand at the
// right. The form owns the controls; the tab order is that of the rows.
void LayOutInRows(Control& form, const std::vector<std::vector<Control*>>& rows);

// Fields beside their labels, options under them in columns, a line of text, and at the right a column of buttons. The
// form owns the controls; the tab order is that of this struct. Fields are named by their labels.
struct FieldForm {
  struct Field {
    Label* label;
    Control* field;
  };
  std::vector<Field> fields;
  std::vector<std::vector<Control*>> options;
  Label* line;
  std::vector<Button*> buttons;
};
// What a key of the form does, wherever in it the focus is.
void OnKey(Control& form, const char* key, std::function<void()> call);
void LayOutFields(Control& form, const FieldForm& contents);

}  // namespace ui
