// A picture, an embedded object or a note within a text, for assistive programs: a child of the editor.
#pragma once

#include <QAccessible>
#include <QPointer>

namespace text {
struct EmbeddedObject;
}

namespace ui {

class RichTextBox;

class ObjectAccessible : public QAccessibleInterface {
 public:
  // The n-th object of the text, counted from 0.
  ObjectAccessible(RichTextBox* box, int index);
  int index() const { return index_; }

  bool isValid() const override;
  QObject* object() const override { return nullptr; }
  QAccessibleInterface* parent() const override;
  QAccessibleInterface* child(int) const override { return nullptr; }
  QAccessibleInterface* childAt(int, int) const override { return nullptr; }
  int childCount() const override { return 0; }
  int indexOfChild(const QAccessibleInterface*) const override { return -1; }
  QString text(QAccessible::Text kind) const override;
  void setText(QAccessible::Text, const QString&) override {}
  QRect rect() const override;
  QAccessible::Role role() const override;
  QAccessible::State state() const override;

 private:
  const text::EmbeddedObject* Shown() const;
  int Offset() const;  // in the editor's text, -1 when there are fewer objects now

  QPointer<RichTextBox> box_;
  int index_;
};

}  // namespace ui
