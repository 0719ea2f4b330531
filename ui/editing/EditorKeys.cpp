// The keyboard: one table of keys, and text.
#include "ui/editing/EditorController.h"
#include "ui/editing/EditorOperation.h"

#include <QChar>
#include <QKeyEvent>

#include <optional>

namespace ui {

enum class EditorController::KeyCommand : uint8_t {
  kUndo,
  kRedo,
  kCut,
  kCopy,
  kPaste,
  kPastePlain,
  kSelectAll,
  kBackspace,
  kBackspaceWord,
  kDelete,
  kDeleteWord,
  kBreakParagraph,
  kOvertype,
  kZoomIn,
  kZoomOut,
  kZoomReset,
};

struct EditorController::KeyBinding {
  Qt::KeyboardModifiers modifiers;
  int key;
  std::optional<KeyCommand> command;
  EditorMove move = EditorMove::kLeft;  // without a command; Shift extends
};

const EditorController::KeyBinding* EditorController::FindBinding(const QKeyEvent& event) {
  using C = KeyCommand;
  using M = EditorMove;
  constexpr auto kNo = Qt::NoModifier;
  constexpr auto kCtrl = Qt::ControlModifier;
  constexpr auto kShift = Qt::ShiftModifier;
  constexpr auto kAlt = Qt::AltModifier;
  // clang-format off
  static const KeyBinding bindings[] = {
      {kNo,   Qt::Key_Left,     {}, M::kLeft},          {kNo,   Qt::Key_Right,    {}, M::kRight},
      {kNo,   Qt::Key_Up,       {}, M::kLineUp},        {kNo,   Qt::Key_Down,     {}, M::kLineDown},
      {kNo,   Qt::Key_PageUp,   {}, M::kPageUp},        {kNo,   Qt::Key_PageDown, {}, M::kPageDown},
      {kNo,   Qt::Key_Home,     {}, M::kLineStart},     {kNo,   Qt::Key_End,      {}, M::kLineEnd},
      {kCtrl, Qt::Key_Left,     {}, M::kWordLeft},      {kCtrl, Qt::Key_Right,    {}, M::kWordRight},
      {kCtrl, Qt::Key_Up,       {}, M::kParagraphUp},   {kCtrl, Qt::Key_Down,     {}, M::kParagraphDown},
      {kCtrl, Qt::Key_Home,     {}, M::kDocumentStart}, {kCtrl, Qt::Key_End,      {}, M::kDocumentEnd},

      {kCtrl,          Qt::Key_Z, C::kUndo},       {kAlt,           Qt::Key_Backspace, C::kUndo},
      {kCtrl | kShift, Qt::Key_Z, C::kRedo},       {kCtrl,          Qt::Key_Y,         C::kRedo},
      {kCtrl,          Qt::Key_X, C::kCut},        {kShift,         Qt::Key_Delete,    C::kCut},
      {kCtrl,          Qt::Key_C, C::kCopy},       {kCtrl,          Qt::Key_Insert,    C::kCopy},
      {kCtrl,          Qt::Key_V, C::kPaste},      {kShift,         Qt::Key_Insert,    C::kPaste},
      {kCtrl | kShift, Qt::Key_V, C::kPastePlain}, {kCtrl,          Qt::Key_A,         C::kSelectAll},
      {kNo,    Qt::Key_Backspace, C::kBackspace},  {kCtrl,          Qt::Key_Backspace, C::kBackspaceWord},
      {kShift, Qt::Key_Backspace, C::kBackspace},  {kNo,            Qt::Key_Insert,    C::kOvertype},
      {kNo,    Qt::Key_Delete,    C::kDelete},     {kCtrl,          Qt::Key_Delete,    C::kDeleteWord},
      {kNo,    Qt::Key_Return, C::kBreakParagraph}, {kShift,        Qt::Key_Return,    C::kBreakParagraph},
      {kNo,    Qt::Key_Enter,  C::kBreakParagraph}, {kShift,        Qt::Key_Enter,     C::kBreakParagraph},
      {kCtrl,          Qt::Key_Plus,  C::kZoomIn},  {kCtrl | kShift, Qt::Key_Plus,       C::kZoomIn},
      {kCtrl,          Qt::Key_Equal, C::kZoomIn},  {kCtrl,          Qt::Key_Minus,      C::kZoomOut},
      {kCtrl,          Qt::Key_0,     C::kZoomReset},
      {kNo,    Qt::Key_Undo, C::kUndo}, {kNo, Qt::Key_Redo, C::kRedo},   {kNo, Qt::Key_Cut, C::kCut},
      {kNo,    Qt::Key_Copy, C::kCopy}, {kNo, Qt::Key_Paste, C::kPaste},
  };
  // clang-format on
  const Qt::KeyboardModifiers modifiers = event.modifiers() & ~(Qt::KeypadModifier | Qt::GroupSwitchModifier);
  for (const KeyBinding& binding : bindings) {
    const auto asked = binding.command ? modifiers : modifiers & ~Qt::KeyboardModifiers(kShift);
    if (binding.key == event.key() && binding.modifiers == asked) return &binding;
  }
  return nullptr;
}

namespace {

// Control and Alt make commands; both together are how some keyboards reach a third level.
bool IsText(const QKeyEvent& event) {
  const QString text = event.text();
  if (text.isEmpty()) return false;
  const bool control = event.modifiers().testFlag(Qt::ControlModifier);
  const bool alt = event.modifiers().testFlag(Qt::AltModifier);
  if (control != alt || event.modifiers().testFlag(Qt::MetaModifier)) return false;
  const QChar first = text.at(0);
  if (first == u'\t') return !control;
  if (first.isHighSurrogate()) return text.size() > 1 && text.at(1).isLowSurrogate();
  // Joiners and direction marks are typed too.
  return first.isPrint() || first.category() == QChar::Other_Format || first.category() == QChar::Other_PrivateUse;
}

}  // namespace

bool EditorController::IsOwnKey(const QKeyEvent& event) {
  return FindBinding(event) || IsText(event);
}

bool EditorController::HandleKey(QKeyEvent& event) {
  const KeyBinding* binding = FindBinding(event);
  const bool returns = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
  if (returns && event.modifiers().testFlag(Qt::ControlModifier)) return FollowLink();
  if (event.key() == Qt::Key_Backtab) return MoveToCell(false);
  if (!binding && !IsText(event)) return false;
  // Before an operation begins: what it has done is not told until its end.
  if (!binding && beforeTyping_ && beforeTyping_(event.text())) return true;
  const Operation operation(*this);
  NoteTypingPause(event);
  if (!binding && event.text() == QStringLiteral("\t") && MoveToCell(true)) return true;
  if (!binding) {
    Type(event.text());
  } else if (binding->command) {
    Run(*binding->command);
  } else {
    const bool extend = event.modifiers().testFlag(Qt::ShiftModifier);
    Move(binding->move, extend);
    if (extend) PublishPrimarySelection();
  }
  return true;
}

void EditorController::Run(KeyCommand command) {
  switch (command) {
    case KeyCommand::kUndo:
      return Undo();
    case KeyCommand::kRedo:
      return Redo();
    case KeyCommand::kCut:
      return Cut();
    case KeyCommand::kCopy:
      return Copy();
    case KeyCommand::kPaste:
      return Paste(false);
    case KeyCommand::kPastePlain:
      return Paste(true);
    case KeyCommand::kSelectAll:
      SelectAll();
      return PublishPrimarySelection();
    case KeyCommand::kBackspace:
      return Erase(false, false);
    case KeyCommand::kBackspaceWord:
      return Erase(false, true);
    case KeyCommand::kDelete:
      return Erase(true, false);
    case KeyCommand::kDeleteWord:
      return Erase(true, true);
    case KeyCommand::kBreakParagraph:
      return BreakParagraph();
    case KeyCommand::kOvertype:
      return SetOvertype(!overtype_);
    case KeyCommand::kZoomIn:
      return host_.ZoomBy(kZoomStep);
    case KeyCommand::kZoomOut:
      return host_.ZoomBy(1 / kZoomStep);
    case KeyCommand::kZoomReset:
      return host_.ZoomBy(1 / layout_.zoom());
  }
}

// Who stops to think begins a new undo step.
void EditorController::NoteTypingPause(const QKeyEvent& event) {
  constexpr unsigned long long kPause = 2000;
  const auto now = event.timestamp();
  if (now > lastKeyTime_ + kPause) document_.SealStep();
  lastKeyTime_ = now;
}

}  // namespace ui
