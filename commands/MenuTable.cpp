#include "commands/MenuTable.h"

#include "ui/desktop/Clipboard.h"

#include <QtGlobal>

namespace commands {
namespace {

using documents::DateTimeForm;
using documents::FormatChecks;
using documents::frmText;
using Kind = ui::MenuRowKind;

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

// A command of the main window that works in documents.
constexpr Row Search(const char* name, const char* caption, const char* key, void (Commands::*command)()) {
  Row row = Main(name, caption, "", key, "", command);
  row.menu.documentOnly = true;
  return row;
}

// The clipboard's owner may let everybody wait for an answer, so it is not asked oftener than must be.
constexpr Row Pastes(Row row) {
  row.asksClipboard = true;
  return row;
}

// Changes the text or what is selected in it.
constexpr Row Edits(Row row) {
  row.menu.editsDocument = true;
  return row;
}

constexpr Row Check(const char* name, const char* caption, const char* key, void (*document)(frmText&),
                    bool FormatChecks::*check) {
  Row row = Edits(Doc(name, caption, "", key, document));
  row.menu.checkable = true;
  row.check = check;
  return row;
}

// Inserts the current date or time, which is also its caption.
template <documents::DateTimeForm Form>
constexpr Row Now(const char* name, const char* caption) {
  Row row = Doc(name, caption, "", "", [](frmText& document) { document.InsertDateTime(Form); });
  row.caption = [] { return documents::DateTimeText(Form); };
  return row;
}

// With the picture of the toolbar's button.
constexpr Row With(const char* icon, Row row) {
  row.menu.icon = icon;
  return row;
}

// Enabled while the main window says so.
constexpr Row UsableWhile(bool (Commands::*usable)() const, Row row) {
  row.usable = usable;
  return row;
}

// Enabled while quotes are loaded.
constexpr Row Quote(const char* name, const char* caption, const char* hint, const char* withoutDocument,
                    void (Commands::*command)()) {
  return UsableWhile(&Commands::QuotesOptions, Main(name, caption, hint, "", withoutDocument, command));
}

// A command of a text that is no document.
constexpr Row Pad(const char* name, const char* caption, void (*pad)(ui::RichTextBox&),
                  bool (*enabled)(ui::RichTextBox&) = nullptr) {
  return {.menu = {.name = name, .caption = caption}, .pad = pad, .padEnabled = enabled};
}
template <auto Handler>
void In(ui::RichTextBox& box) {
  (box.*Handler)();
}
template <auto Question>
bool Is(ui::RichTextBox& box) {
  return (box.*Question)();
}

// Checked while the main window says so.
constexpr Row Choice(const char* name, const char* caption, const char* key, void (Commands::*command)(),
                     bool (Commands::*chosen)() const) {
  Row row = Main(name, caption, "", key, key, command);
  row.menu.checkable = true;
  row.chosen = chosen;
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
bool AutoCompleteOn(frmText& document) {
  return document.AutoCompleteOn();
}
bool ObjectSelected(frmText& document) {
  return document.ObjectSelected();
}
bool ClipboardHasText(frmText&) {
  return ui::ClipboardHasText();
}
bool ClipboardHasRtf(frmText&) {
  return ui::ClipboardHasRtf();
}

// clang-format off
constexpr Row kMenus[] = {
  Menu("mnuFile", QT_TRANSLATE_NOOP("Menu", "&File")),
    Main("mnuNewProject", QT_TRANSLATE_NOOP("Menu", "&New project"), "", "", "", &Commands::mnuNewProject_Click),
    Main("mnuOpen", QT_TRANSLATE_NOOP("Menu", "&Open a project..."), "", "Ctrl+O", "Ctrl+O", &Commands::mnuOpen_Click),
    Main("mnuSaveProject", QT_TRANSLATE_NOOP("Menu", "Save &project file"), "", "", "", &Commands::mnuSaveProject_Click),
    Main("mnuSaveProjectAs", QT_TRANSLATE_NOOP("Menu", "Save project file &as..."), "", "", "", &Commands::mnuSaveProjectAs_Click),
    Separator(),
    With("new", Main("mnuNew", QT_TRANSLATE_NOOP("Menu", "&New document"), "", "Ctrl+N", "Ctrl+N", &Commands::mnuNew_Click)),
    With("open", Main("mnuOpenFile", QT_TRANSLATE_NOOP("Menu", "Open a &document..."), "", "", "", &Commands::mnuOpenFile_Click)),
    With("save", Doc("mnuSaveFile", QT_TRANSLATE_NOOP("Menu", "&Save document"), "", "Ctrl+S", On<&frmText::mnuSaveFile_Click>)),
    Doc("mnuSaveFileAs", QT_TRANSLATE_NOOP("Menu", "Save document &as..."), "", "", On<&frmText::mnuSaveFileAs_Click>),
    Main("mnuSaveAll", QT_TRANSLATE_NOOP("Menu", "Save a&ll"), "", "", "", &Commands::mnuSaveAll_Click),
    Doc("mnuClose", QT_TRANSLATE_NOOP("Menu", "&Close document"), "", "", On<&frmText::mnuClose_Click>),
    Separator(),
    With("print", Doc("mnuPrint", QT_TRANSLATE_NOOP("Menu", "&Print document..."), "", "Ctrl+P", On<&frmText::mnuPrint_Click>)),
    With("view", Doc("mnuViewFile", QT_TRANSLATE_NOOP("Menu", "&View document in external app"), "", "Shift+F5", On<&frmText::mnuViewFile_Click>)),
    Doc("mnuCopyPath", QT_TRANSLATE_NOOP("Menu", "Copy document &pathname to clipboard"), "", "", On<&frmText::mnuCopyPath_Click>),
    Edits(Doc("mnuRefresh", QT_TRANSLATE_NOOP("Menu", "&Refresh"), "", "F5", On<&frmText::mnuRefresh_Click>)),
    Separator(),
    Main("mnuOpenAutoComplete", QT_TRANSLATE_NOOP("Menu", "Load &Auto-Complete file..."), "", "", "", &Commands::mnuOpenAutoComplete_Click),
    Main("mnuTextBlocksOpen", QT_TRANSLATE_NOOP("Menu", "Load Often Used &Text Blocks..."), "", "", "", &Commands::mnuTextBlocksOpen_Click),
    Main("mnuNotesOpen", QT_TRANSLATE_NOOP("Menu", "Load &Notes..."), "", "", "", &Commands::mnuNotesOpen_Click),
    UsableWhile(&Commands::NotesSave, Main("mnuNotesSave", QT_TRANSLATE_NOOP("Menu", "Save &Notes"), "", "", "Ctrl+S", &Commands::mnuNotesSave_Click)),
    Separator(),
    Main("mnuExit", QT_TRANSLATE_NOOP("Menu", "E&xit"), "Alt+F4", "", "", &Commands::mnuExit_Click),
    Separator(),
    List("mnuRecentFile"),
  End(),
  Menu("mnuEdit", QT_TRANSLATE_NOOP("Menu", "&Edit"), true),
    Doc("mnuUndoItem", QT_TRANSLATE_NOOP("Menu", "&Undo"), "Ctrl+Z", "", On<&frmText::mnuUndoItem_Click>, CanUndo),
    Doc("mnuRedoItem", QT_TRANSLATE_NOOP("Menu", "&Redo"), "Ctrl+Y", "", On<&frmText::mnuRedoItem_Click>, CanRedo),
    Separator(),
    With("cut", Doc("mnuCut", QT_TRANSLATE_NOOP("Menu", "Cu&t"), "Ctrl+X", "", On<&frmText::mnuCut_Click>)),
    With("copy", Doc("mnuCopy", QT_TRANSLATE_NOOP("Menu", "&Copy to clipboard"), "Ctrl+C", "", On<&frmText::mnuCopy_Click>)),
    With("paste", Doc("mnuPaste", QT_TRANSLATE_NOOP("Menu", "&Paste from clipboard"), "Ctrl+V", "", On<&frmText::mnuPaste_Click>)),
    Menu("mnuPasteAs", QT_TRANSLATE_NOOP("Menu", "Paste a&s"), true),
      Pastes(Doc("mnuPasteAsText", QT_TRANSLATE_NOOP("Menu", "Plain &text"), "", "", On<&frmText::mnuPasteAsText_Click>, ClipboardHasText)),
      Pastes(Doc("mnuPasteAsRTF", QT_TRANSLATE_NOOP("Menu", "&Rich text format"), "", "", On<&frmText::mnuPasteAsRTF_Click>, ClipboardHasRtf)),
      Pastes(Doc("mnuPasteAsLink", QT_TRANSLATE_NOOP("Menu", "&HTML link"), "", "", On<&frmText::mnuPasteAsLink_Click>, ClipboardHasText)),
    End(),
    With("clear", Doc("mnuDelete", QT_TRANSLATE_NOOP("Menu", "&Delete"), "Del", "", On<&frmText::mnuDelete_Click>)),
    Doc("mnuSelAll", QT_TRANSLATE_NOOP("Menu", "Select &All"), "Ctrl+A", "", On<&frmText::mnuSelAll_Click>),
    Separator(),
    With("find", Search("mnuFind", QT_TRANSLATE_NOOP("Menu", "&Find..."), "Ctrl+F", &Commands::mnuFind_Click)),
    Edits(Search("mnuFindNext", QT_TRANSLATE_NOOP("Menu", "Find &next"), "F3", &Commands::mnuFindNext_Click)),
    Search("mnuReplace", QT_TRANSLATE_NOOP("Menu", "R&eplace..."), "Ctrl+H", &Commands::mnuReplace_Click),
    Separator(),
    Edits(With("auto-complete", Doc("mnuAutoComplete", QT_TRANSLATE_NOOP("Menu", "&Auto-Complete"), "", "F4", On<&frmText::mnuAutoComplete_Click>, AutoCompleteOn))),
    Menu("mnuTime", QT_TRANSLATE_NOOP("Menu", "Insert &Date/Time"), true),
      Now<DateTimeForm::kDateGeneral>("mnuDateGeneral", QT_TRANSLATE_NOOP("Menu", "&General date")),
      Now<DateTimeForm::kDateLong>("mnuDateLong", QT_TRANSLATE_NOOP("Menu", "&Long date")),
      Now<DateTimeForm::kDateMed>("mnuDateMed", QT_TRANSLATE_NOOP("Menu", "&Medium date")),
      Now<DateTimeForm::kDateShort>("mnuDateShort", QT_TRANSLATE_NOOP("Menu", "&Short date")),
      Separator(),
      Now<DateTimeForm::kTimeLong>("mnuTimeLong", QT_TRANSLATE_NOOP("Menu", "Long &time")),
      Now<DateTimeForm::kTimeMed>("mnuTimeMed", QT_TRANSLATE_NOOP("Menu", "Medium t&ime")),
      Now<DateTimeForm::kTimeShort>("mnuTimeShort", QT_TRANSLATE_NOOP("Menu", "Short tim&e")),
    End(),
    Doc("mnuObjInsert", QT_TRANSLATE_NOOP("Menu", "Insert &Object..."), "", "", On<&frmText::mnuObjInsert_Click>),
  End(),
  Menu("mnuFormat", QT_TRANSLATE_NOOP("Menu", "For&mat"), true),
    Menu("mnuEmphasis", QT_TRANSLATE_NOOP("Menu", "&Emphasis"), true),
      With("bold", Check("mnuBold", QT_TRANSLATE_NOOP("Menu", "&Bold"), "Ctrl+B", On<&frmText::mnuBold_Click>, &FormatChecks::Bold)),
      With("italic", Check("mnuItalic", QT_TRANSLATE_NOOP("Menu", "&Italic"), "Ctrl+I", On<&frmText::mnuItalic_Click>, &FormatChecks::Italic)),
      With("underline", Check("mnuUnderline", QT_TRANSLATE_NOOP("Menu", "&Underlined"), "Ctrl+U", On<&frmText::mnuUnderline_Click>, &FormatChecks::Underline)),
      With("strikethru", Check("mnuStrikeThru", QT_TRANSLATE_NOOP("Menu", "&Strikethru"), "", On<&frmText::mnuStrikeThru_Click>, &FormatChecks::StrikeThru)),
      Separator(),
      Edits(Doc("mnuEmphasisRemove", QT_TRANSLATE_NOOP("Menu", "&Remove emphasis"), "", "Ctrl+R", On<&frmText::mnuEmphasisRemove_Click>)),
    End(),
    Menu("mnuAlign", QT_TRANSLATE_NOOP("Menu", "&Align"), true),
      With("align-left", Check("mnuAlignLeft", QT_TRANSLATE_NOOP("Menu", "&left"), "", On<&frmText::mnuAlignLeft_Click>, &FormatChecks::AlignLeft)),
      With("align-center", Check("mnuAlignCenter", QT_TRANSLATE_NOOP("Menu", "&center"), "", On<&frmText::mnuAlignCenter_Click>, &FormatChecks::AlignCenter)),
      With("align-right", Check("mnuAlignRight", QT_TRANSLATE_NOOP("Menu", "&right"), "", On<&frmText::mnuAlignRight_Click>, &FormatChecks::AlignRight)),
    End(),
    Menu("mnuIndent", QT_TRANSLATE_NOOP("Menu", "&Indent"), true),
      Doc("mnuIndentLeft", QT_TRANSLATE_NOOP("Menu", "&left..."), "", "", On<&frmText::mnuIndentLeft_Click>),
      Doc("mnuIndentHang", QT_TRANSLATE_NOOP("Menu", "&hanging..."), "", "", On<&frmText::mnuIndentHang_Click>),
      Doc("mnuIndentRight", QT_TRANSLATE_NOOP("Menu", "&right..."), "", "", On<&frmText::mnuIndentRight_Click>),
    End(),
    With("bullet", Check("mnuBullet", QT_TRANSLATE_NOOP("Menu", "&Bulleted..."), "", On<&frmText::mnuBullet_Click>, &FormatChecks::Bullet)),
    Separator(),
    With("font", Doc("mnuFont", QT_TRANSLATE_NOOP("Menu", "&Font..."), "", "", On<&frmText::mnuFont_Click>)),
    Check("mnuSelCharOffset", QT_TRANSLATE_NOOP("Menu", "Display super/subscript &tool"), "Ctrl+T", On<&frmText::mnuSelCharOffset_Click>, &FormatChecks::SelCharOffset),
    With("protected", Check("mnuProtect", QT_TRANSLATE_NOOP("Menu", "&Protect text"), "", On<&frmText::mnuProtect_Click>, &FormatChecks::Protect)),
  End(),
  Menu("mnuStripmenu", QT_TRANSLATE_NOOP("Menu", "&Strip"), true),
    Doc("mnuStrip", QT_TRANSLATE_NOOP("Menu", "&CRLF's"), "", "", On<&frmText::mnuStrip_Click>),
    Doc("mnuStripBlanks", QT_TRANSLATE_NOOP("Menu", "excess &blanks"), "", "", On<&frmText::mnuStripBlanks_Click>),
    Doc("mnuStripASCII", QT_TRANSLATE_NOOP("Menu", "&ASCII character..."), "", "", On<&frmText::mnuStripASCII_Click>),
  End(),
  Menu("mnuProjList", QT_TRANSLATE_NOOP("Menu", "Project &list")),
    Main("mnuOpenFromList", QT_TRANSLATE_NOOP("Menu", "&Open selected item(s)"), "Enter", "", "", &Commands::mnuOpenFromList_Click),
    Main("mnuCopyListPath", QT_TRANSLATE_NOOP("Menu", "Copy selected &pathname(s) to clipboard"), "", "", "", &Commands::mnuCopyListPath_Click),
    Separator(),
    Doc("mnuAddFile", QT_TRANSLATE_NOOP("Menu", "&Add current document"), "", "", On<&frmText::mnuAddFile_Click>),
    Main("mnuAddAll", QT_TRANSLATE_NOOP("Menu", "&Add all open documents"), "", "", "", &Commands::mnuAddAll_Click),
    Main("mnuLinkAdd", QT_TRANSLATE_NOOP("Menu", "Add '&read-only' file shortcut..."), "", "", "", &Commands::mnuLinkAdd_Click),
    Separator(),
    Main("mnuRemoveFile", QT_TRANSLATE_NOOP("Menu", "&Remove selected item(s)"), "Del", "", "", &Commands::mnuRemoveFile_Click),
    Separator(),
    Main("mnuSelectAll", QT_TRANSLATE_NOOP("Menu", "Select &all"), "", "", "", &Commands::mnuSelectAll_Click),
    Main("mnuProjListClearSelected", QT_TRANSLATE_NOOP("Menu", "&Clear selections"), "", "", "", &Commands::mnuProjListClearSelected_Click),
    Separator(),
    Main("mnuListSort", QT_TRANSLATE_NOOP("Menu", "&Sort"), "", "", "", &Commands::mnuListSort_Click),
    Main("mnuListEditPrj", QT_TRANSLATE_NOOP("Menu", "&Edit project file as document"), "", "", "", &Commands::mnuListEditPrj_Click),
  End(),
  Menu("mnuTreeView", QT_TRANSLATE_NOOP("Menu", "&Tree view")),
    Main("mnuTreeOpen", QT_TRANSLATE_NOOP("Menu", "&Open selected item(s)"), "", "", "", &Commands::mnuTreeOpen_Click),
    Main("mnuTreeOpenExt", QT_TRANSLATE_NOOP("Menu", "Open selected item(s) with e&xternal app"), "", "", "", &Commands::mnuTreeOpenExt_Click),
    Main("mnuTreeAdd2List", QT_TRANSLATE_NOOP("Menu", "Add &selected item(s) to project list"), "", "", "", &Commands::mnuTreeAdd2List_Click),
    Main("mnuTreeCopyPath", QT_TRANSLATE_NOOP("Menu", "Copy selected &pathname(s) to clipboard"), "", "", "", &Commands::mnuTreeCopyPath_Click),
    Separator(),
    Main("mnuTreeSync", QT_TRANSLATE_NOOP("Menu", "&Synchronize w/current directory"), "", "", "", &Commands::mnuTreeSync_Click),
    Main("mnuTreeDirChg", QT_TRANSLATE_NOOP("Menu", "Change to selected &directory"), "", "", "", &Commands::mnuTreeDirChg_Click),
    Separator(),
    Main("mnuTreeCollapseAll", QT_TRANSLATE_NOOP("Menu", "Collapse &All"), "", "", "", &Commands::mnuTreeCollapseAll_Click),
    Main("mnuTreeClearSelections", QT_TRANSLATE_NOOP("Menu", "Clear &Selections"), "", "", "", &Commands::mnuTreeClearSelections_Click),
    Separator(),
    Main("mnuTreeDelete", QT_TRANSLATE_NOOP("Menu", "&Delete selected item(s)"), "Del", "", "", &Commands::mnuTreeDelete_Click),
    Main("mnuTreeRename", QT_TRANSLATE_NOOP("Menu", "&Rename selected item"), "", "F2", "F2", &Commands::mnuTreeRename_Click),
    Main("mnuTreeRefresh", QT_TRANSLATE_NOOP("Menu", "&Refresh selected folder"), "", "", "F5", &Commands::mnuTreeRefresh_Click),
    Main("mnuTreeCreateFolder", QT_TRANSLATE_NOOP("Menu", "&Create a new folder"), "", "", "", &Commands::mnuTreeCreateFolder_Click),
    Main("mnuTreeExplore", QT_TRANSLATE_NOOP("Menu", "&Explore folder"), "", "", "", &Commands::mnuTreeExplore_Click),
  End(),
  Menu("mnuQuotes", QT_TRANSLATE_NOOP("Menu", "&Quotes")),
    Main("mnuLoadQuotes", QT_TRANSLATE_NOOP("Menu", "&Load quotes file..."), "", "", "", &Commands::mnuLoadQuotes_Click),
    Separator(),
    Quote("mnuFindQuote", QT_TRANSLATE_NOOP("Menu", "&Find a quote..."), "", "Ctrl+F", &Commands::mnuFindQuote_Click),
    Quote("mnuFindNextQuote", QT_TRANSLATE_NOOP("Menu", "Find &next"), "", "F3", &Commands::mnuFindNextQuote_Click),
    Quote("mnuRandom", QT_TRANSLATE_NOOP("Menu", "&Pick a random quote"), "", "", &Commands::mnuRandom_Click),
    Quote("mnuCopyQuote", QT_TRANSLATE_NOOP("Menu", "&Copy selected quote"), "Ctrl-C", "", &Commands::mnuCopyQuote_Click),
  End(),
  Menu("mnuInternet", QT_TRANSLATE_NOOP("Menu", "&Internet")),
    Main("mnuIntEmail", QT_TRANSLATE_NOOP("Menu", "Compose &Email message"), "", "", "", &Commands::mnuIntEmail_Click),
    Main("mnuIntNews", QT_TRANSLATE_NOOP("Menu", "Read &News"), "", "", "", &Commands::mnuIntNews_Click),
    Main("mnuIntSnews", QT_TRANSLATE_NOOP("Menu", "Read &Secure news"), "", "", "", &Commands::mnuIntSnews_Click),
    Separator(),
    Main("mnuIntFTP", QT_TRANSLATE_NOOP("Menu", "Start &FTP program"), "", "", "", &Commands::mnuIntFTP_Click),
    Main("mnuVelloraFTP", QT_TRANSLATE_NOOP("Menu", "Start Vellora &FTP"), "", "", "", &Commands::mnuVelloraFTP_Click),
    Separator(),
    Main("mnuSAR", QT_TRANSLATE_NOOP("Menu", "&Trawlex"), "", "", "", &Commands::mnuSAR_Click),
  End(),
  Menu("mnuOptions", QT_TRANSLATE_NOOP("Menu", "&Options")),
    Main("mnuPrefItem", QT_TRANSLATE_NOOP("Menu", "&Defaults..."), "", "", "Ctrl+D", &Commands::mnuPrefItem_Click),
    Choice("mnuAutoCompleteToggle", QT_TRANSLATE_NOOP("Menu", "Toggle &Auto-Complete"), "Shift+F4", &Commands::mnuAutoCompleteToggle_Click, &Commands::AutoCompleteOn),
    Separator(),
    Menu("mnuToolBar", QT_TRANSLATE_NOOP("Menu", "Tool&bar")),
      Main("mnuToolBarCustomize", QT_TRANSLATE_NOOP("Menu", "&Customize..."), "", "", "", &Commands::mnuToolBarCustomize_Click),
      Menu("mnuToolbarButtonStyle", QT_TRANSLATE_NOOP("Menu", "&Button style")),
        Choice("mnuToolbarButtonRaised", QT_TRANSLATE_NOOP("Menu", "&raised"), "", &Commands::mnuToolbarButtonRaised_Click, &Commands::ToolbarIsRaised),
        Choice("mnuToolbarButtonFlat", QT_TRANSLATE_NOOP("Menu", "&flat"), "", &Commands::mnuToolbarButtonFlat_Click, &Commands::ToolbarIsFlat),
      End(),
    End(),
  End(),
  Menu("mnuWindow", QT_TRANSLATE_NOOP("Menu", "&Window")),
    Main("mnuNextPane", QT_TRANSLATE_NOOP("Menu", "&Next window"), "Ctrl+F6", "Ctrl+F6", "", &Commands::mnuNextPane_Click),
    Main("mnuMinRest", QT_TRANSLATE_NOOP("Menu", "&Minimize/restore all"), "", "F12", "F12", &Commands::mnuMinRest_Click),
    Separator(),
    Main("mnuWindowCascade", QT_TRANSLATE_NOOP("Menu", "&Cascade"), "", "", "", &Commands::mnuWindowCascade_Click),
    Main("mnuWindowTileHoriz", QT_TRANSLATE_NOOP("Menu", "Tile &horizontally"), "", "", "", &Commands::mnuWindowTileHoriz_Click),
    Main("mnuWindowTileVertical", QT_TRANSLATE_NOOP("Menu", "Tile &vertically"), "", "", "", &Commands::mnuWindowTileVertical_Click),
    Main("mnuWindowArrange", QT_TRANSLATE_NOOP("Menu", "&Arrange icons"), "", "", "", &Commands::mnuWindowArrange_Click),
    Main("mnuWindowSendBack", QT_TRANSLATE_NOOP("Menu", "Send to &back"), "", "", "", &Commands::mnuWindowSendBack_Click),
    Separator(),
    Main("mnuCloseAll", QT_TRANSLATE_NOOP("Menu", "Close a&ll"), "", "", "", &Commands::mnuCloseAll_Click),
    Separator(),
    List("mnuWindowList"),
  End(),
  Menu("mnuHelp", QT_TRANSLATE_NOOP("Menu", "&Help")),
    Main("mnuUserManual", QT_TRANSLATE_NOOP("Menu", "&User manual"), "F1", "", "", &Commands::mnuUserManual_Click),
    Main("mnuHTMLTagRef", QT_TRANSLATE_NOOP("Menu", "&HTML Tag reference"), "", "", "", &Commands::mnuHTMLTagRef_Click),
    Separator(),
    Main("mnuAbout", QT_TRANSLATE_NOOP("Menu", "&About Quillmark"), "", "", "", &Commands::mnuAbout_Click),
  End(),
};

constexpr Row kDocumentPopup[] = {
  Doc("mnuRCUndo", QT_TRANSLATE_NOOP("Menu", "&Undo"), "", "", On<&frmText::mnuUndoItem_Click>, CanUndo),
  Separator(),
  With("cut", Doc("mnuRCCut", QT_TRANSLATE_NOOP("Menu", "Cu&t"), "", "", On<&frmText::mnuCut_Click>)),
  With("copy", Doc("mnuRCCopy", QT_TRANSLATE_NOOP("Menu", "&Copy"), "", "", On<&frmText::mnuCopy_Click>)),
  With("paste", Doc("mnuRCPaste", QT_TRANSLATE_NOOP("Menu", "&Paste"), "", "", On<&frmText::mnuPaste_Click>)),
  With("clear", Doc("mnuRCDelete", QT_TRANSLATE_NOOP("Menu", "&Delete"), "", "", On<&frmText::mnuDelete_Click>)),
  Separator(),
  Doc("mnuRCSelAll", QT_TRANSLATE_NOOP("Menu", "Select &All"), "", "", On<&frmText::mnuSelAll_Click>),
  Separator(),
  Doc("mnuRCObjOpen", QT_TRANSLATE_NOOP("Menu", "&Open object"), "Ctrl+Enter", "", On<&frmText::mnuRCObjOpen_Click>, ObjectSelected),
};
constexpr Row kListPopup[] = {
  Main("mnuRCOpenFromList", QT_TRANSLATE_NOOP("Menu", "&Open selected item(s)"), "", "", "", &Commands::mnuOpenFromList_Click),
  Main("mnuRCListSort", QT_TRANSLATE_NOOP("Menu", "&Sort list"), "", "", "", &Commands::mnuListSort_Click),
  Main("mnuRCCopyPath", QT_TRANSLATE_NOOP("Menu", "&Copy selected pathname(s) to clipboard"), "", "", "", &Commands::mnuCopyListPath_Click),
  Main("mnuRCRemove", QT_TRANSLATE_NOOP("Menu", "&Remove selected items from project"), "", "", "", &Commands::mnuRemoveFile_Click),
  Main("mnuRCListDragDropHelp", QT_TRANSLATE_NOOP("Menu", "&Drag/Drop help..."), "", "", "", &Commands::mnuRCDragDropHelp_Click),
};
constexpr Row kTreePopup[] = {
  Main("mnuRCTreeOpen", QT_TRANSLATE_NOOP("Menu", "&Open"), "", "", "", &Commands::mnuRCTreeOpen_Click),
  Main("mnuRCTreeOpenExt", QT_TRANSLATE_NOOP("Menu", "Open with e&xternal app"), "", "", "", &Commands::mnuRCTreeOpenExt_Click),
  Main("mnuRCTreeAdd2List", QT_TRANSLATE_NOOP("Menu", "Add to project list"), "", "", "", &Commands::mnuRCTreeAdd2List_Click),
  Main("mnuRCTreeCopyPath", QT_TRANSLATE_NOOP("Menu", "Copy &pathname to clipboard"), "", "", "", &Commands::mnuRCTreeCopyPath_Click),
  Main("mnuRCTreeDirChange", QT_TRANSLATE_NOOP("Menu", "Change to this &directory"), "", "", "", &Commands::mnuTreeDirChg_Click),
  Main("mnuRCTreeCollapseAll", QT_TRANSLATE_NOOP("Menu", "Collapse &All"), "", "", "", &Commands::mnuTreeCollapseAll_Click),
  Main("mnuRCTreeClearSelections", QT_TRANSLATE_NOOP("Menu", "Clear &Selections"), "", "", "", &Commands::mnuTreeClearSelections_Click),
  Main("mnuRCTreeDelete", QT_TRANSLATE_NOOP("Menu", "&Delete"), "", "", "", &Commands::mnuRCTreeDelete_Click),
  Main("mnuRCTreeRename", QT_TRANSLATE_NOOP("Menu", "&Rename"), "", "", "", &Commands::mnuTreeRename_Click),
  Main("mnuRCTreeRefresh", QT_TRANSLATE_NOOP("Menu", "&Refresh selected folder"), "", "", "", &Commands::mnuTreeRefresh_Click),
  Main("mnuRCTreeCreateFolder", QT_TRANSLATE_NOOP("Menu", "&Create a new folder"), "", "", "", &Commands::mnuTreeCreateFolder_Click),
  Main("mnuRCTreeExplore", QT_TRANSLATE_NOOP("Menu", "&Explore"), "", "", "", &Commands::mnuTreeExplore_Click),
  Main("mnuRCTreeDragDropHelp", QT_TRANSLATE_NOOP("Menu", "&Drag/Drop help..."), "", "", "", &Commands::mnuRCDragDropHelp_Click),
};
constexpr Row kPadPopup[] = {
  Pad("mnuRCUndo", QT_TRANSLATE_NOOP("Menu", "&Undo"), In<&ui::RichTextBox::Undo>, Is<&ui::RichTextBox::CanUndo>),
  Separator(),
  With("cut", Pad("mnuRCCut", QT_TRANSLATE_NOOP("Menu", "Cu&t"), In<&ui::RichTextBox::Cut>)),
  With("copy", Pad("mnuRCCopy", QT_TRANSLATE_NOOP("Menu", "&Copy"), In<&ui::RichTextBox::Copy>)),
  With("paste", Pad("mnuRCPaste", QT_TRANSLATE_NOOP("Menu", "&Paste"), In<&ui::RichTextBox::Paste>)),
  With("clear", Pad("mnuRCDelete", QT_TRANSLATE_NOOP("Menu", "&Delete"), In<&ui::RichTextBox::DeleteSelection>)),
  Separator(),
  Pad("mnuRCSelAll", QT_TRANSLATE_NOOP("Menu", "Select &All"), In<&ui::RichTextBox::SelectAll>),
};
constexpr Row kQuotesPopup[] = {
  Quote("mnuRCFindQuote", QT_TRANSLATE_NOOP("Menu", "&Find a quote..."), "", "", &Commands::mnuFindQuote_Click),
  Quote("mnuRCFindNextQuote", QT_TRANSLATE_NOOP("Menu", "Find &next"), "", "", &Commands::mnuFindNextQuote_Click),
  Quote("mnuRCRandom", QT_TRANSLATE_NOOP("Menu", "&Pick a random quote"), "", "", &Commands::mnuRandom_Click),
  Quote("mnuRCCopyQuote", QT_TRANSLATE_NOOP("Menu", "&Copy selected quote"), "", "", &Commands::mnuCopyQuote_Click),
};
// clang-format on

}  // namespace

std::span<const Row> MenuTable() {
  return kMenus;
}
std::span<const Row> DocumentPopupTable() {
  return kDocumentPopup;
}
std::span<const Row> ListPopupTable() {
  return kListPopup;
}
std::span<const Row> TreePopupTable() {
  return kTreePopup;
}
std::span<const Row> PadPopupTable() {
  return kPadPopup;
}
std::span<const Row> QuotesPopupTable() {
  return kQuotesPopup;
}

}  // namespace commands
