// The editor for assistive programs. Offsets are engine units (a break is one character), as far as they fit an int.
#pragma once

#include "text/Document.h"

#include <QAccessible>
#include <QAccessibleWidget>

#include <memory>
#include <vector>

namespace ui {

class RichTextBox;

// Registers the interface of RichTextBox; more than once is harmless.
void InstallEditorAccessibility();
// What to tell of the change from `before`, the text of revision `since`, and of the selection. At most some thousand
// units of text are read.
std::unique_ptr<QAccessibleEvent> EventOfTextChange(RichTextBox& box, const text::Content& before,
                                                    text::Revision since);
std::unique_ptr<QAccessibleEvent> EventOfSelectionChange(RichTextBox& box, const text::Selection& selection);

class EditorAccessible : public QAccessibleWidget,
                         public QAccessibleTextInterface,
                         public QAccessibleEditableTextInterface {
 public:
  explicit EditorAccessible(RichTextBox* box);
  ~EditorAccessible() override;

  void* interface_cast(QAccessible::InterfaceType type) override;
  QAccessible::State state() const override;
  QString text(QAccessible::Text kind) const override;  // its name is the caption of the window it stands in

  // The objects of the text follow the widgets; at most kMostObjects.
  int childCount() const override;
  QAccessibleInterface* child(int index) const override;
  int indexOfChild(const QAccessibleInterface* child) const override;
  QAccessibleInterface* childAt(int x, int y) const override;
  int OffsetOfObject(int index) const;  // -1 without one

  // QAccessibleTextInterface
  void selection(int index, int* start, int* end) const override;
  int selectionCount() const override;
  void addSelection(int start, int end) override;
  void removeSelection(int index) override;
  void setSelection(int index, int start, int end) override;
  int cursorPosition() const override;
  void setCursorPosition(int position) override;
  QString text(int start, int end) const override;  // at most kMostGiven units
  QString textBeforeOffset(int offset, QAccessible::TextBoundaryType boundary, int* start, int* end) const override;
  QString textAfterOffset(int offset, QAccessible::TextBoundaryType boundary, int* start, int* end) const override;
  QString textAtOffset(int offset, QAccessible::TextBoundaryType boundary, int* start, int* end) const override;
  int characterCount() const override;
  QRect characterRect(int offset) const override;
  int offsetAtPoint(const QPoint& point) const override;
  void scrollToSubstring(int start, int end) override;
  QString attributes(int offset, int* start, int* end) const override;

  // QAccessibleEditableTextInterface
  void deleteText(int start, int end) override;
  void insertText(int offset, const QString& text) override;
  void replaceText(int start, int end, const QString& text) override;

 private:
  // More does not fit a message of the bus, and nobody reads it at once.
  static constexpr int64_t kMostGiven = int64_t{1} << 22;

  static constexpr size_t kMostObjects = 1000;

  const std::vector<int>& Objects() const;  // their offsets, ascending
  RichTextBox& box() const;
  const text::Content& content() const;
  text::Units UnitsOf(int offset) const;
  text::Units RunBegin(text::Units at) const;
  text::Range RangeOf(int start, int end) const;
  text::Range RangeAround(text::Units position, QAccessible::TextBoundaryType boundary) const;
  QString Give(text::Range range, int* start, int* end) const;

  mutable std::vector<int> objects_;
  mutable text::Revision objectsOf_ = 0;
  mutable bool objectsKnown_ = false;
  mutable std::vector<QAccessible::Id> children_;  // those that were asked for
};

}  // namespace ui
