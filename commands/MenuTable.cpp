#include "commands/MenuTable.h"

#include "ui/desktop/Clipboard.h"

#include <QtGlobal>

namespace commands {
namespace {

using documents::FormatChecks;
using documents::frmText;
using Kind = ui::MenuRowKind;

#define TEXT(caption) QT_TRANSLATE_NOOP("Menu", caption)

constexpr Row Menu(const char* name, const char* caption, bool documentOnly = false) {
  return {.menu = {.kind = Kind::kMenu, .name = name, .caption = caption, .documentOnly = documentOnly}};
}
constexpr Row End() {
  return {.menu = {.kind = Kind::kEnd}};
}
constexpr Row Separator() {
  return {.menu = {.kind = Kind::kSeparator}};
}
constexpr Row List(const char* name) {
  return {.menu = {.kind = Kind::kList, .name = name}};
}

// A command of the main window. `hint` shows a key that the desktop or the editor handles.
constexpr Row Main(const char* name, const char* caption, const char* hint, const char* withDocument,
                   const char* withoutDocument, void (Commands::*command)()) {
  return {.menu = {.name = name,
                   .caption = caption,
                   .hint = hint,
                   .keyWithDocument = withDocument,
                   .keyWithoutDocument = withoutDocument},
          .command = command};
}

// A command of the active document.
constexpr Row Doc(const char* name, const char* caption, const char* hint, const char* key, void (*document)(frmText&),
                  bool (*enabled)(frmText&) = nullptr) {
  return {.menu = {.name = name, .caption = caption, .hint = hint, .keyWithDocument = key, .documentOnly = true},
          .document = document,
          .enabled = enabled};
}

constexpr Row Check(const char* name, const char* caption, const char* key, void (*document)(frmText&),
                    bool FormatChecks::*check) {
  Row row = Doc(name, caption, "", key, document);
  row.menu.checkable = true;
  row.check = check;
  return row;
}

// A document's handler as a row holds it; what saving gives back concerns only closing.
template <auto Handler>
void On(frmText& document) {
  static_cast<void>((document.*Handler)());
}

bool CanUndo(frmText& document) {
  return document.RichTextBox1().CanUndo();
}
bool CanRedo(frmText& document) {
  return document.RichTextBox1().CanRedo();
}
bool ClipboardHasText(frmText&) {
  return ui::ClipboardHasText();
}
bool ClipboardHasRtf(frmText&) {
  return ui::ClipboardHasRtf();
}

// clang-format off
constexpr Row kMenus[] = {
  Menu("mnuFile", TEXT("&File")),
    Main("mnuNew", TEXT("&New document"), "", "Ctrl+N", "Ctrl+N", &Commands::mnuNew_Click),
    Main("mnuOpenFile", TEXT("Open a &document..."), "", "", "", &Commands::mnuOpenFile_Click),
    Doc("mnuSaveFile", TEXT("&Save document"), "", "Ctrl+S", On<&frmText::mnuSaveFile_Click>),
    Doc("mnuSaveFileAs", TEXT("Save document &as..."), "", "", On<&frmText::mnuSaveFileAs_Click>),
    Main("mnuSaveAll", TEXT("Save a&ll"), "", "", "", &Commands::mnuSaveAll_Click),
    Doc("mnuClose", TEXT("&Close document"), "", "", On<&frmText::mnuClose_Click>),
    Separator(),
    Doc("mnuCopyPath", TEXT("Copy document &pathname to clipboard"), "", "", On<&frmText::mnuCopyPath_Click>),
    Doc("mnuRefresh", TEXT("&Refresh"), "", "F5", On<&frmText::mnuRefresh_Click>),
    Separator(),
    Main("mnuExit", TEXT("E&xit"), "Alt+F4", "", "", &Commands::mnuExit_Click),
  End(),
  Menu("mnuEdit", TEXT("&Edit"), true),
    Doc("mnuUndoItem", TEXT("&Undo"), "Ctrl+Z", "", On<&frmText::mnuUndoItem_Click>, CanUndo),
    Doc("mnuRedoItem", TEXT("&Redo"), "Ctrl+Y", "", On<&frmText::mnuRedoItem_Click>, CanRedo),
    Separator(),
    Doc("mnuCut", TEXT("Cu&t"), "Ctrl+X", "", On<&frmText::mnuCut_Click>),
    Doc("mnuCopy", TEXT("&Copy to clipboard"), "Ctrl+C", "", On<&frmText::mnuCopy_Click>),
    Doc("mnuPaste", TEXT("&Paste from clipboard"), "Ctrl+V", "", On<&frmText::mnuPaste_Click>),
    Menu("mnuPasteAs", TEXT("Paste a&s"), true),
      Doc("mnuPasteAsText", TEXT("Plain &text"), "", "", On<&frmText::mnuPasteAsText_Click>, ClipboardHasText),
      Doc("mnuPasteAsRTF", TEXT("&Rich text format"), "", "", On<&frmText::mnuPasteAsRTF_Click>, ClipboardHasRtf),
    End(),
    Doc("mnuDelete", TEXT("&Delete"), "Del", "", On<&frmText::mnuDelete_Click>),
    Doc("mnuSelAll", TEXT("Select &All"), "Ctrl+A", "", On<&frmText::mnuSelAll_Click>),
  End(),
  Menu("mnuFormat", TEXT("For&mat"), true),
    Menu("mnuEmphasis", TEXT("&Emphasis"), true),
      Check("mnuBold", TEXT("&Bold"), "Ctrl+B", On<&frmText::mnuBold_Click>, &FormatChecks::Bold),
      Check("mnuItalic", TEXT("&Italic"), "Ctrl+I", On<&frmText::mnuItalic_Click>, &FormatChecks::Italic),
      Check("mnuUnderline", TEXT("&Underlined"), "Ctrl+U", On<&frmText::mnuUnderline_Click>, &FormatChecks::Underline),
      Check("mnuStrikeThru", TEXT("&Strikethru"), "", On<&frmText::mnuStrikeThru_Click>, &FormatChecks::StrikeThru),
      Separator(),
      Doc("mnuEmphasisRemove", TEXT("&Remove emphasis"), "", "Ctrl+R", On<&frmText::mnuEmphasisRemove_Click>),
    End(),
    Menu("mnuAlign", TEXT("&Align"), true),
      Check("mnuAlignLeft", TEXT("&left"), "", On<&frmText::mnuAlignLeft_Click>, &FormatChecks::AlignLeft),
      Check("mnuAlignCenter", TEXT("&center"), "", On<&frmText::mnuAlignCenter_Click>, &FormatChecks::AlignCenter),
      Check("mnuAlignRight", TEXT("&right"), "", On<&frmText::mnuAlignRight_Click>, &FormatChecks::AlignRight),
    End(),
    Separator(),
    Doc("mnuFont", TEXT("&Font..."), "", "", On<&frmText::mnuFont_Click>),
  End(),
  Menu("mnuWindow", TEXT("&Window")),
    Main("mnuNextPane", TEXT("&Next window"), "", "Ctrl+F6", "", &Commands::mnuNextPane_Click),
    Main("mnuMinRest", TEXT("&Minimize/restore all"), "", "F12", "F12", &Commands::mnuMinRest_Click),
    Separator(),
    Main("mnuWindowCascade", TEXT("&Cascade"), "", "", "", &Commands::mnuWindowCascade_Click),
    Main("mnuWindowTileHoriz", TEXT("Tile &horizontally"), "", "", "", &Commands::mnuWindowTileHoriz_Click),
    Main("mnuWindowTileVertical", TEXT("Tile &vertically"), "", "", "", &Commands::mnuWindowTileVertical_Click),
    Main("mnuWindowArrange", TEXT("&Arrange icons"), "", "", "", &Commands::mnuWindowArrange_Click),
    Main("mnuWindowSendBack", TEXT("Send to &back"), "", "", "", &Commands::mnuWindowSendBack_Click),
    Separator(),
    Main("mnuCloseAll", TEXT("Close a&ll"), "", "", "", &Commands::mnuCloseAll_Click),
    Separator(),
    List("mnuWindowList"),
  End(),
};

constexpr Row kDocumentPopup[] = {
  Doc("mnuRCUndo", TEXT("&Undo"), "", "", On<&frmText::mnuUndoItem_Click>, CanUndo),
  Separator(),
  Doc("mnuRCCut", TEXT("Cu&t"), "", "", On<&frmText::mnuCut_Click>),
  Doc("mnuRCCopy", TEXT("&Copy"), "", "", On<&frmText::mnuCopy_Click>),
  Doc("mnuRCPaste", TEXT("&Paste"), "", "", On<&frmText::mnuPaste_Click>),
  Doc("mnuRCDelete", TEXT("&Delete"), "", "", On<&frmText::mnuDelete_Click>),
  Separator(),
  Doc("mnuRCSelAll", TEXT("Select &All"), "", "", On<&frmText::mnuSelAll_Click>),
};
// clang-format on

}  // namespace

std::span<const Row> MenuTable() {
  return kMenus;
}
std::span<const Row> DocumentPopupTable() {
  return kDocumentPopup;
}

}  // namespace commands
