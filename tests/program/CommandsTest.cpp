// Every row of the menus and every button: its name, texts, keys, states, and what choosing it does.
#include "tests/program/FolderTreeTest.h"
#include "tests/support/ScriptedFileOperations.h"
#include "ui/desktop/Clipboard.h"
#include "ui/frame/ToolBar.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDeadlineTimer>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QThread>

#include <map>
#include <set>

namespace {

using documents::frmText;
using ui::MenuRowKind;

constexpr const char* kTheSame = "=";

// `states` are those without a document, with a plain and with a rich one: "." hidden, "n" disabled, "y" enabled, "c"
// enabled and checked. `does` is what CommandsTest::Effect sees when it is chosen.
struct Expected {
  const char* name;
  const char* caption = "";  // with its mnemonic and the hint behind a tab
  const char* states = "";
  const char* does = "";
  const char* keys = "|";        // with a document|without
  const char* alone = kTheSame;  // what it does without a document
  const char* after = "";        // another row that is chosen before
};

// clang-format off
constexpr Expected kRows[] = {
  {"mnuFile", "&File", "yyy"},
    {"mnuNewProject", "&New project", "yyy", "lines; list"},
    {"mnuOpen", "&Open a project...", "yyy", "open dialog [Select a project file] ", "Ctrl+O|Ctrl+O"},
    {"mnuSaveProject", "Save &project file", "yyy", "p.prj", "|", kTheSame, "mnuTreeAdd2List"},
    {"mnuSaveProjectAs", "Save project file &as...", "yyy", "save dialog [] p.prj"},
    {"-"},
    {"mnuNew", "&New document", "yyy", "active=Untitled:3", "Ctrl+N|Ctrl+N", "active=Untitled:1"},
    {"mnuOpenFile", "Open a &document...", "yyy", "open dialog [Select a document to open] "},
    {"mnuSaveFile", "&Save document", ".yy", "a.rtf", "Ctrl+S|"},
    {"mnuSaveFileAs", "Save document &as...", ".yy", "save dialog [] a.rtf"},
    {"mnuSaveAll", "Save a&ll", "yyy", "a.rtf; notes.txt", "|", "notes.txt"},
    {"mnuClose", "&Close document", ".yy", "message box [Quillmark] The text in [/a.rtf] has changed."},
    {"-"},
    {"mnuPrint", "&Print document...", ".yy", "printer dialog", "Ctrl+P|"},
    {"mnuViewFile", "&View document in external app", ".yy", "message box [Quillmark] This document has been changed.  Do you want to save it before continuing?", "Shift+F5|"},
    {"mnuCopyPath", "Copy document &pathname to clipboard", ".yy", "clipboard=/a.rtf"},
    {"mnuRefresh", "&Refresh", ".yy", "selection", "F5|"},
    {"-"},
    {"mnuOpenAutoComplete", "Load &Auto-Complete file...", "yyy", "open dialog [Select an Auto-Complete file] words.txt"},
    {"mnuTextBlocksOpen", "Load Often Used &Text Blocks...", "yyy", "open dialog [Select a text blocks file] "},
    {"mnuNotesOpen", "Load &Notes...", "yyy", "open dialog [Select a personal notes file] notes.txt"},
    {"mnuNotesSave", "Save &Notes", "nnn", "notes.txt", "|Ctrl+S"},
    {"-"},
    {"mnuExit", "E&xit\tAlt+F4", "yyy", "message box [Quillmark] The text in [/a.rtf] has changed.", "|", "message box [Quillmark] Notes file has changed."},
    {"-"},
    {"mnuRecentFile", "list"},
  {"end"},
  {"mnuEdit", "&Edit", ".yy"},
    {"mnuUndoItem", "&Undo\tCtrl+Z", ".nn", "selection; text=one  two/three"},
    {"mnuRedoItem", "&Redo\tCtrl+Y", ".nn", "selection; text=xyone  two/three"},
    {"-"},
    {"mnuCut", "Cu&t\tCtrl+X", ".yy", "checks= bold right; clipboard=xone  two/three; selection; text="},
    {"mnuCopy", "&Copy to clipboard\tCtrl+C", ".yy", "clipboard=xone  two/three"},
    {"mnuPaste", "&Paste from clipboard\tCtrl+V", ".yy", "checks= right; selection; text=clip"},
    {"mnuPasteAs", "Paste a&s", ".yy"},
      {"mnuPasteAsText", "Plain &text", ".yy", "checks= bold right; selection; text=http:"},
      {"mnuPasteAsRTF", "&Rich text format", ".nn", "checks= right; selection; text=clip"},
      {"mnuPasteAsLink", "&HTML link", ".yy", "checks= bold right; selection; text=<a href=\"http:\"></a>"},
    {"end"},
    {"mnuDelete", "&Delete\tDel", ".yy", "checks= bold right; selection; text="},
    {"mnuSelAll", "Select &All\tCtrl+A", ".yy", "selection", "|", kTheSame, "mnuPaste"},
    {"-"},
    {"mnuFind", "&Find...", ".yy", "find=to find", "Ctrl+F|"},
    {"mnuFindNext", "Find &next", ".yy", "find=to find", "F3|"},
    {"mnuReplace", "R&eplace...", ".yy", "find=to findR", "Ctrl+H|"},
    {"-"},
    {"mnuAutoComplete", "&Auto-Complete", ".nn", "selection; words=shown", "F4|", kTheSame, "mnuPaste"},
    {"mnuTime", "Insert &Date/Time", ".yy"},
      {"mnuDateGeneral", "&General date", ".yy", "checks= bold right; selection; text"},
      {"mnuDateLong", "&Long date", ".yy", "checks= bold right; selection; text"},
      {"mnuDateMed", "&Medium date", ".yy", "checks= bold right; selection; text"},
      {"mnuDateShort", "&Short date", ".yy", "checks= bold right; selection; text"},
      {"-"},
      {"mnuTimeLong", "Long &time", ".yy", "checks= bold right; selection; text"},
      {"mnuTimeMed", "Medium t&ime", ".yy", "checks= bold right; selection; text"},
      {"mnuTimeShort", "Short tim&e", ".yy", "checks= bold right; selection; text"},
    {"end"},
    {"mnuObjInsert", "Insert &Object...", ".yy", "modal form [Insert Object]"},
  {"end"},
  {"mnuFormat", "For&mat", ".yy"},
    {"mnuEmphasis", "&Emphasis", ".yy"},
      {"mnuBold", "&Bold", ".yy", "format", "Ctrl+B|"},
      {"mnuItalic", "&Italic", ".yy", "checks= bold italic center; format", "Ctrl+I|"},
      {"mnuUnderline", "&Underlined", ".yy", "checks= bold underline center; format", "Ctrl+U|"},
      {"mnuStrikeThru", "&Strikethru", ".yy", "checks= bold strike center; format"},
      {"-"},
      {"mnuEmphasisRemove", "&Remove emphasis", ".yy", "checks= center; format", "Ctrl+R|"},
    {"end"},
    {"mnuAlign", "&Align", ".yy"},
      {"mnuAlignLeft", "&left", ".cc", "checks= bold left; format"},
      {"mnuAlignCenter", "&center", ".yy", "format"},
      {"mnuAlignRight", "&right", ".yy", "checks= bold right; format"},
    {"end"},
    {"mnuIndent", "&Indent", ".yy"},
      {"mnuIndentLeft", "&left...", ".yy", "input box Input (in centimeters) the amount of left indentation desired"},
      {"mnuIndentHang", "&hanging...", ".yy", "input box Input (in centimeters) the amount of hanging indentation desired"},
      {"mnuIndentRight", "&right...", ".yy", "input box Input (in centimeters) the amount of right indentation desired"},
    {"end"},
    {"mnuBullet", "&Bulleted...", ".yy", "input box Input (in centimeters) the amount of indentation desired for bulleted text"},
    {"-"},
    {"mnuFont", "&Font...", ".yy", "font dialog", "|", kTheSame, "mnuPaste"},
    {"mnuSelCharOffset", "Display super/subscript &tool", ".yy", "checks= bold tool center", "Ctrl+T|"},
    {"mnuProtect", "&Protect text", ".yy", "checks= bold protected center; format"},
  {"end"},
  {"mnuStripmenu", "&Strip", ".yy"},
    {"mnuStrip", "&CRLF's", ".yy", "checks= bold right; selection; text=xone  two three"},
    {"mnuStripBlanks", "excess &blanks", ".yy", "checks= bold right; selection; text=xone two/three"},
    {"mnuStripASCII", "&ASCII character...", ".yy", "input box Input the ASCII code of the character you want to strip."},
  {"end"},
  {"mnuProjList", "Project &list", "yyy"},
    {"mnuOpenFromList", "&Open selected item(s)\tEnter", "yyy", "active=/folder/c.txt"},
    {"mnuCopyListPath", "Copy selected &pathname(s) to clipboard", "yyy", "clipboard=/folder/c.txt"},
    {"-"},
    {"mnuAddFile", "&Add current document", ".yy", "lines; list"},
    {"mnuAddAll", "&Add all open documents", "yyy", "lines; list", "|", ""},
    {"mnuLinkAdd", "Add '&read-only' file shortcut...", "yyy", "open dialog [Select a file to create a read-only shortcut for] "},
    {"-"},
    {"mnuRemoveFile", "&Remove selected item(s)\tDel", "yyy", "modal form [Quillmark]; lines"},
    {"-"},
    {"mnuSelectAll", "Select &all", "yyy", "lines"},
    {"mnuProjListClearSelected", "&Clear selections", "yyy", "lines"},
    {"-"},
    {"mnuListSort", "&Sort", "yyy", "lines; list"},
    {"mnuListEditPrj", "&Edit project file as document", "yyy", "active=/p.prj"},
  {"end"},
  {"mnuTreeView", "&Tree view", "yyy"},
    {"mnuTreeOpen", "&Open selected item(s)", "yyy", "active=/folder/d.txt; tree=folder-(c.txt d.txt* inner+) @folder/d.txt"},
    {"mnuTreeOpenExt", "Open selected item(s) with e&xternal app", "yyy", "modal form [Quillmark]"},
    {"mnuTreeAdd2List", "Add &selected item(s) to project list", "yyy", "lines; list; tree=folder-(c.txt d.txt* inner+) @folder/d.txt"},
    {"mnuTreeCopyPath", "Copy selected &pathname(s) to clipboard", "yyy", "clipboard=/folder/d.txt"},
    {"-"},
    {"mnuTreeSync", "&Synchronize w/current directory", "yyy", "tree=folder+ @."},
    {"mnuTreeDirChg", "Change to selected &directory", "yyy", "directory=/folder; tree=folder-(c.txt d.txt inner+ new.txt) @folder/c.txt"},
    {"-"},
    {"mnuTreeCollapseAll", "Collapse &All", "yyy", "tree=folder+ @."},
    {"mnuTreeClearSelections", "Clear &Selections", "yyy", "tree=folder-(c.txt d.txt inner+) @folder/c.txt"},
    {"-"},
    {"mnuTreeDelete", "&Delete selected item(s)\tDel", "yyy", "operations=trash [/folder/d.txt]|"},
    {"mnuTreeRename", "&Rename selected item", "yyy", "renaming", "F2|F2"},
    {"mnuTreeRefresh", "&Refresh selected folder", "yyy", "directory=/folder; tree=folder-(c.txt d.txt inner+ new.txt) @folder/c.txt", "|F5"},
    {"mnuTreeCreateFolder", "&Create a new folder", "yyy", "renaming; tree=folder-(c.txt d.txt* inner+ New Folder+) @folder/New Folder"},
    {"mnuTreeExplore", "&Explore folder", "yyy", "desktop=open /folder|"},
  {"end"},
  {"mnuQuotes", "&Quotes", "yyy"},
    {"mnuLoadQuotes", "&Load quotes file...", "yyy", "open dialog [Select a quotes or tagline file] quotes.txt"},
    {"-"},
    {"mnuFindQuote", "&Find a quote...", "nnn", "input box Input the search string", "|Ctrl+F"},
    {"mnuFindNextQuote", "Find &next", "nnn", "input box Input the search string", "|F3"},
    {"mnuRandom", "&Pick a random quote", "nnn", "quote"},
    {"mnuCopyQuote", "&Copy selected quote\tCtrl-C", "nnn", "clipboard=quote", "|", kTheSame, "mnuRandom"},
  {"end"},
  {"mnuInternet", "&Internet", "yyy"},
    {"mnuIntEmail", "Compose &Email message", "yyy", "desktop=open mailto:|"},
    {"mnuIntNews", "Read &News", "yyy", "desktop=open news://|"},
    {"mnuIntSnews", "Read &Secure news", "yyy", "desktop=open snews://|"},
    {"-"},
    {"mnuIntFTP", "Start &FTP program", "yyy", "desktop=open FTP://|"},
    {"mnuVelloraFTP", "Start Vellora &FTP", "yyy", "desktop=run /application/VelloraFTP.exe [,]|"},
    {"-"},
    {"mnuSAR", "&Trawlex", "yyy", "desktop=run /application/Trawlex.exe [,]|"},
  {"end"},
  {"mnuOptions", "&Options", "yyy"},
    {"mnuPrefItem", "&Defaults...", "yyy", "modal form [Defaults]", "|Ctrl+D"},
    {"mnuAutoCompleteToggle", "Toggle &Auto-Complete", "yyy", "auto-complete", "Shift+F4|Shift+F4"},
    {"-"},
    {"mnuToolBar", "Tool&bar", "yyy"},
      {"mnuToolBarCustomize", "&Customize...", "yyy", "modal form [Customize the toolbar]"},
      {"mnuToolbarButtonStyle", "&Button style", "yyy"},
        {"mnuToolbarButtonRaised", "&raised", "yyy", "style=0"},
        {"mnuToolbarButtonFlat", "&flat", "ccc", "style=1", "|", kTheSame, "mnuToolbarButtonRaised"},
      {"end"},
    {"end"},
  {"end"},
  {"mnuWindow", "&Window", "yyy"},
    {"mnuNextPane", "&Next window\tCtrl+F6", "yyy", "active=/b.txt", "Ctrl+F6|", ""},
    {"mnuMinRest", "&Minimize/restore all", "yyy", "pad; places; states", "F12|F12", "pad"},
    {"-"},
    {"mnuWindowCascade", "&Cascade", "yyy", "places", "|", "", "mnuWindowTileHoriz"},
    {"mnuWindowTileHoriz", "Tile &horizontally", "yyy", "places", "|", ""},
    {"mnuWindowTileVertical", "Tile &vertically", "yyy", "places", "|", ""},
    {"mnuWindowArrange", "&Arrange icons", "yyy", "places", "|", "", "mnuMinRest"},
    {"mnuWindowSendBack", "Send to &back", "yyy", "active=/b.txt", "|", ""},
    {"-"},
    {"mnuCloseAll", "Close a&ll", "yyy", "message box [Quillmark] The text in [/a.rtf] has changed.; documents; places; states", "|", ""},
    {"-"},
    {"mnuWindowList", "list"},
  {"end"},
  {"mnuHelp", "&Help", "yyy"},
    {"mnuUserManual", "&User manual\tF1", "yyy", "modal form [Program Notice]"},
    {"mnuHTMLTagRef", "&HTML Tag reference", "yyy", "desktop=open /application/Htmlref.chm|"},
    {"-"},
    {"mnuAbout", "&About Quillmark", "yyy", "modal form [About Quillmark]"},
  {"end"},
};
// clang-format on

// `as` is the row of the menu that does the same.
struct ExpectedButton {
  const char *key, *longText, *shortText, *as;
  bool needsDocument = true;
};
struct ExpectedButtonMenu {
  const char *button, *caption, *key, *as;
  bool needsDocument = false;
};

// clang-format off
constexpr ExpectedButton kButtons[] = {
  {"New", "Create a new project or document", "New", "", false},
  {"Open", "Open a project or document...", "Open", "", false},
  {"Save", "Save project or document...", "Save", "", false},
  {"Print", "Print document...", "Print", "mnuPrint"},
  {"View", "View in external application", "View", "mnuViewFile"},
  {"Find", "Find...", "Find", "mnuFind"},
  {"Cut", "Cut selected text", "Cut", "mnuCut"},
  {"Copy", "Copy to clipboard", "Copy", "mnuCopy"},
  {"Paste", "Paste from clipboard", "Paste", "mnuPaste"},
  {"Clear", "Clear selected text", "Clear", "mnuDelete"},
  {"Bold", "Bold", "Bold", "mnuBold"},
  {"Italics", "Italics", "Italics", "mnuItalic"},
  {"Underline", "Underline", "Underline", "mnuUnderline"},
  {"Strikethru", "Strikethru", "Strikethru", "mnuStrikeThru"},
  {"Font", "Change font...", "Font", "mnuFont"},
  {"Align left", "Align left", "Left", "mnuAlignLeft"},
  {"Align center", "Align center", "Center", "mnuAlignCenter"},
  {"Align right", "Align right", "Right", "mnuAlignRight"},
  {"Bullet", "Bullet...", "Bullet", "mnuBullet"},
  {"Protected", "Protected", "Protected", "mnuProtect"},
  {"Auto", "Enable/disable Auto-Complete", "Auto-Complete", "mnuAutoCompleteToggle", false},
  {"Strip", "Strip characters...", "Strip", ""},
  {"Quotes", "Quotes", "Quotes", "", false},
};
constexpr ExpectedButtonMenu kButtonMenus[] = {
  {"New", "&Project", "Project", "mnuNewProject"},
  {"New", "&Document", "Document", "mnuNew"},
  {"Open", "&Project...", "Project", "mnuOpen"},
  {"Open", "&Document...", "Document", "mnuOpenFile"},
  {"Save", "&Project", "Project", "mnuSaveProject"},
  {"Save", "&Document", "Document", "mnuSaveFile", true},
  {"Strip", "&CRLF's", "CRLF", "mnuStrip", true},
  {"Strip", "Excess &blanks", "Blanks", "mnuStripBlanks", true},
  {"Strip", "&ASCII character...", "ASCII", "mnuStripASCII", true},
  {"Quotes", "&Load a quotes file...", "Load", "mnuLoadQuotes"},
  {"Quotes", "&Find a quote...", "Find", "mnuFindQuote"},
  {"Quotes", "Find &next quote", "Next", "mnuFindNextQuote"},
  {"Quotes", "&Pick random quote", "Random", "mnuRandom"},
  {"Quotes", "&Copy quote", "Copy", "mnuCopyQuote"},
};
// clang-format on

constexpr const char* kNoDocument =
    "message box [Quillmark] Error: No document has been selected.  Please select a document, and then try again.";

const Expected& RowNamed(std::string_view name) {
  return *std::ranges::find(kRows, name, &Expected::name);
}

class CommandsTest : public FolderTreeTest {
 protected:
  ui::MenuBar& Bar() { return program().menus().bar(); }
  ui::ToolBar& Buttons() { return program().frame().toolbar(); }
  QAction& Action(size_t row) { return const_cast<QAction&>(*Bar().action(row)); }
  size_t RowOf(std::string_view name) {
    for (size_t i = 0; i < Bar().rowCount(); ++i)
      if (name == Bar().row(i).name) return i;
    ADD_FAILURE() << name;
    return 0;
  }

  char State(size_t row) {
    const QAction& action = Action(row);
    return !action.isVisible() ? '.' : !action.isEnabled() ? 'n' : action.isChecked() ? 'c' : 'y';
  }
  void ExpectStates(size_t context) {
    program().menus().Fill();
    std::set<QKeySequence> live;
    for (size_t i = 0; i < std::size(kRows); ++i) {
      const Expected& row = kRows[i];
      if (!*row.states) continue;
      EXPECT_EQ(State(i), row.states[context]) << row.name << " " << context;
      const std::string_view keys = row.keys;
      const std::string_view key = context ? keys.substr(0, keys.find('|')) : keys.substr(keys.find('|') + 1);
      EXPECT_EQ(Action(i).shortcut().toString().toStdString(), key) << row.name << " " << context;
      EXPECT_TRUE(key.empty() || live.insert(Action(i).shortcut()).second) << row.name << ": " << key << " twice";
    }
    for (const ExpectedButton& button : kButtons)
      EXPECT_EQ(Buttons().isEnabled(*Buttons().Find(button.key)), context || !button.needsDocument) << button.key;
    for (const ExpectedButtonMenu& entry : kButtonMenus) {
      const size_t row = *Buttons().Find(entry.button);
      EXPECT_EQ(Buttons().isMenuEnabled(row, *Buttons().FindMenu(row, entry.key)),
                State(RowOf(entry.as)) == 'y' || entry.button == std::string_view("Strip"))
          << entry.button << " " << entry.key;
    }
  }

  // A world in which every command finds something to do, made anew when the one before has been changed.
  void Prepare(bool withDocument) {
    if (world_ == (withDocument ? 2 : 1)) return Reset();
    world_ = withDocument ? 2 : 1;
    std::filesystem::remove_all(At("folder"));
    MakeFolders({"folder/inner"});
    Put("folder/c.txt", "c");
    Put("folder/d.txt", "d");
    Put("words.txt", "<a>\nhttp:\n");
    Put("b.txt", "b");
    Put("a.rtf", "{\\rtf1\\qc {\\b one}  two\\par\\qr three\\par}");
    Put("p.prj", At("folder/c.txt").native() + "\r\n" + At("b.txt.lnk").native() + "\r\n");
    Put("application/Htmlref.chm", "");
    shell::SettingsFile(place.application.settings, place.recovery)
        .SaveSettings(services::kApplicationName, services::kGeneral,
                      {{"AutoTagFile", At("words.txt").native()}, {"AutoCompleteAtStartup", "True"}});
    Restart();
    dialogs.NoteAll();
    auto scripted = std::make_unique<support::ScriptedFileOperations>();
    operations_ = scripted.get();
    program().SetFileOperations(std::move(scripted));
    program().frame().widget()->resize(900, 700);
    program().LoadProject(At("p.prj").native());
    program().panes().quotes().LoadQuotesFile(Put("quotes.txt", "quote\n"));
    program().panes().notes().MyShow(Put("notes.txt", "notes"));
    program().panes().notes().pad()->Text1().SetSelText("more ");
    if (withDocument) PrepareDocuments();
    program().frame().leftPane().List1().SelectOnly(1);
    Go("folder");
    program().mnuTreeSync_Click();
    Tree().Check(Key("folder/d.txt"));
    Tree().Select(Key("folder/c.txt"));
    Put("folder/new.txt", "");
    Go("");
    Settle();
    Reset();
  }
  void PrepareDocuments() {
    Open(At("b.txt"));
    ui::RichTextBox& box = Open(At("a.rtf"))->RichTextBox1();
    Type(*table().Active(), "x");
    Type(*table().Active(), "y");
    box.Undo();
    box.SelectAll();
  }
  void Reset() {
    auto mime = std::make_unique<QMimeData>();
    mime->setText("http:");
    mime->setData("text/rtf", "{\\rtf1 clip}");
    QApplication::clipboard()->setMimeData(mime.release());
    Settle();
    desktop.asked.clear();
    Q_EMIT Bar().AboutToShow(RowOf("mnuEdit"));
    dialogs.TakeNoted();
  }

  using World = std::map<std::string, std::string>;
  World Look() {
    World world;
    for (int slot = 1; slot <= table().UpperBound(); ++slot) LookAt(table().Document(slot), world);
    if (frmText* const active = table().Active()) LookAtActive(*active, world);
    const ui::ListBox& list = program().frame().leftPane().List1();
    for (int i = 0; i < list.count(); ++i) world["list"] += list.line(i).text + "|";
    for (const int line : list.SelectedLines()) world["lines"] += std::to_string(line) + "|";
    const std::string tree = Shown();
    world["tree"] = tree.substr(tree.find("folder"), tree.find(" notes") - tree.find("folder")) + " @" + Selected();
    world["directory"] = Directory().path().native();
    world["renaming"] = View().indexWidget(View().currentIndex()) ? "yes" : "no";
    world["clipboard"] = ui::ClipboardText().toStdString();
    for (const char* name : {"a.rtf", "p.prj", "notes.txt"}) world[name] = Bytes(At(name));
    for (const std::string& call : desktop.asked) world["desktop"] += call + "|";
    for (const std::string& call : operations_->asked) world["operations"] += call + "|";
    world["auto-complete"] = program().autoComplete().AutoCompleteOn() ? "on" : "off";
    world["style"] = std::to_string(program().commands().toolbarStyle());
    search::frmFind* const find = program().find().dialog();
    world["find"] = find && find->widget()->isVisible() ? "to find" + find->Tag : "hidden";
    world["quote"] = std::to_string(program().panes().quotes().pane()->List1().Choice());
    world["pad"] = std::to_string(static_cast<int>(program().panes().notes().pad()->windowState()));
    return world;
  }
  static void LookAt(frmText* document, World& world) {
    if (!document) return;
    const QRect place = document->widget()->geometry();
    world["documents"] += document->caption() + "|";
    world["places"] += std::to_string(place.x()) + " " + std::to_string(place.y()) + " " +
                       std::to_string(place.width()) + " " + std::to_string(place.height()) + "|";
    world["states"] += std::to_string(static_cast<int>(document->windowState()));
  }
  static void LookAtActive(frmText& active, World& world) {
    const ui::RichTextBox& box = active.RichTextBox1();
    world["active"] = active.caption();
    world["text"] = box.Text().toStdString();
    world["selection"] = std::to_string(box.SelStart()) + "," + std::to_string(box.SelLength());
    const auto* list = active.widget()->findChild<QWidget*>("Combo1");
    world["words"] = list && list->isVisible() ? "shown" : "hidden";
    const documents::FormatChecks& checks = active.checks();
    for (const auto& [name, check] : {std::pair{"bold", checks.Bold},
                                      {"italic", checks.Italic},
                                      {"underline", checks.Underline},
                                      {"strike", checks.StrikeThru},
                                      {"protected", checks.Protect},
                                      {"tool", checks.SelCharOffset},
                                      {"left", checks.AlignLeft},
                                      {"center", checks.AlignCenter},
                                      {"right", checks.AlignRight}})
      world["checks"] += check ? std::string(" ") + name : "";
  }

  // The questions that the choice led to, then what of the world is another.
  std::string Effect(const std::function<void()>& choose) {
    const World before = Look();
    frmText* const active = table().Active();
    const auto content = active ? std::optional(active->RichTextBox1().document().content()) : std::nullopt;
    const ui::FormId id = active ? active->id() : ui::FormId::kNone;
    choose();
    Settle();
    std::string effect;
    const auto add = [&](const std::string& what) { effect += (effect.empty() ? "" : "; ") + what; };
    for (std::string asked : dialogs.TakeNoted()) add(Short(std::move(asked)));
    World after = Look();
    // Another document is of course another in everything.
    const bool another = after.contains("active") && (!active || before.at("active") != after["active"]);
    for (const auto& [key, value] : after) {
      const auto was = before.find(key);
      if (was != before.end() && was->second == value) continue;
      if (key != "desktop" && key != "clipboard") world_ = 0;
      static const std::set<std::string> kOfDocument = {"checks", "documents", "places", "selection",
                                                        "states", "text",      "words"};
      if (another && kOfDocument.contains(key)) continue;
      static const std::set<std::string> kTold = {"active", "checks", "clipboard", "desktop", "directory", "find",
                                                  "style",  "text",   "tree",      "words",   "operations"};
      const bool told = kTold.contains(key) && value.size() < 200 && (key != "text" || !HasDigit(value));
      add(told ? key + "=" + Short(value) : key);
    }
    for (const auto& [key, value] : before)
      if (!after.contains(key)) world_ = 0, add("no " + key);
    const bool stays = active && table().Find(id) && before.at("text") == after["text"];
    if (stays && !active->RichTextBox1().document().content().SameAs(*content)) world_ = 0, add("format");
    return effect;
  }
  static bool HasDigit(const std::string& text) { return text.find_first_of("0123456789") != std::string::npos; }
  // Without the test's folder, on one line.
  std::string Short(std::string text) {
    if (text.starts_with("font dialog")) return "font dialog";  // its font is the system's
    for (size_t at; (at = text.find(folder().native())) != std::string::npos;) text.erase(at, folder().native().size());
    text = text.substr(0, text.starts_with("message") ? text.find("\r\n") : text.npos);
    std::erase(text, '\r');
    std::ranges::replace(text, '\n', '/');
    return text;
  }
  std::string EffectOf(const Expected& row, bool withDocument, const std::function<void()>& choose) {
    Prepare(withDocument);
    if (*row.after) {
      Action(RowOf(row.after)).trigger();
      Settle();
      world_ = 0;
    }
    if (row.name == std::string_view("mnuWindowArrange") && withDocument) table().Document(1)->widget()->move(9, 9);
    return Effect([&] {
      choose();
      const auto renames = [this] { return View().indexWidget(View().currentIndex()) != nullptr; };
      const QDeadlineTimer end(row.name == std::string_view("mnuTreeRename") ? 10000 : 0);
      while (!renames() && !end.hasExpired()) Settle(), QThread::msleep(2);
    });
  }

  support::ScriptedFileOperations* operations_ = nullptr;

 private:
  int world_ = 0;  // 1 without a document, 2 with one, 0 changed
};

TEST_F(CommandsTest, TheRowsAndButtonsAreThese) {
  ASSERT_EQ(Bar().rowCount(), std::size(kRows));
  for (size_t i = 0; i < std::size(kRows); ++i) {
    const Expected& row = kRows[i];
    const std::string_view name = row.name;
    const MenuRowKind kind = name == "-"                               ? MenuRowKind::kSeparator
                             : name == "end"                           ? MenuRowKind::kEnd
                             : row.caption == std::string_view("list") ? MenuRowKind::kList
                             : *row.does                               ? MenuRowKind::kItem
                                                                       : MenuRowKind::kMenu;
    ASSERT_EQ(Bar().row(i).kind, kind) << i << " " << name;
    if (kind == MenuRowKind::kSeparator || kind == MenuRowKind::kEnd) continue;
    EXPECT_EQ(Bar().row(i).name, name);
    if (kind != MenuRowKind::kList) {
      EXPECT_EQ(Action(i).text().toStdString(), row.caption);
    }
  }
  ASSERT_EQ(Buttons().count(), std::size(kButtons));
  const ExpectedButtonMenu* entry = kButtonMenus;
  for (size_t i = 0; i < Buttons().count(); ++i) {
    const ui::ToolBarRow& row = Buttons().row(i);
    EXPECT_STREQ(row.key, kButtons[i].key);
    EXPECT_EQ(Buttons().button(i).toolTip(), kButtons[i].longText) << row.key;
    EXPECT_EQ(Buttons().description(i), kButtons[i].shortText) << row.key;
    for (const ui::ToolBarMenuRow& item : row.menu) {
      ASSERT_NE(entry, std::end(kButtonMenus));
      EXPECT_STREQ(entry->button, row.key);
      EXPECT_STREQ(item.key, entry->key);
      EXPECT_STREQ(item.caption, entry++->caption) << row.key;
    }
  }
  EXPECT_EQ(entry, std::end(kButtonMenus));
}

TEST_F(CommandsTest, StatesAndKeysFollowTheDocument) {
  ExpectStates(0);
  QApplication::clipboard()->setText("text");
  Open(Put("a.txt", "plain"));
  Q_EMIT Bar().AboutToShow(RowOf("mnuEdit"));
  ExpectStates(1);
  Open(Put("a.rtf", "{\\rtf1 rich}"));
  Q_EMIT Bar().AboutToShow(RowOf("mnuEdit"));
  ExpectStates(2);
}

TEST_F(CommandsTest, EveryRowDoesItsWork) {
  for (const bool withDocument : {true, false}) {
    for (size_t i = 0; i < std::size(kRows); ++i) {
      const Expected& row = kRows[i];
      if (!*row.does || (!withDocument && row.states[0] == '.')) continue;
      const bool same = withDocument || row.alone == kTheSame;
      EXPECT_EQ(EffectOf(row, withDocument, [&] { Action(i).trigger(); }), same ? row.does : row.alone) << row.name;
    }
  }
}

// As the row of the menu; where that needs a document and there is none, the shared message.
TEST_F(CommandsTest, EveryButtonDoesTheWorkOfItsRow) {
  const auto expect = [&](const char* as, bool needsDocument, const std::function<void()>& press) {
    for (const bool withDocument : {true, false}) {
      const Expected& row = RowNamed(as);
      const char* const alone = needsDocument ? kNoDocument : row.alone == kTheSame ? row.does : row.alone;
      EXPECT_EQ(EffectOf(row, withDocument, press), withDocument ? row.does : alone) << as;
    }
  };
  for (size_t i = 0; i < std::size(kButtons); ++i)
    if (*kButtons[i].as) expect(kButtons[i].as, kButtons[i].needsDocument, [&, i] { Q_EMIT Buttons().Clicked(i); });
  for (const ExpectedButtonMenu& entry : kButtonMenus)
    expect(entry.as, entry.needsDocument, [&] {
      const size_t row = *Buttons().Find(entry.button);
      Q_EMIT Buttons().MenuClicked(row, *Buttons().FindMenu(row, entry.key));
    });
}

TEST_F(CommandsTest, EveryRowOfAPopupHasOneHandler) {
  using namespace commands;
  for (const auto rows :
       {DocumentPopupTable(), ListPopupTable(), TreePopupTable(), PadPopupTable(), QuotesPopupTable()})
    for (const Row& row : rows)
      EXPECT_EQ(!!row.command + !!row.document + !!row.pad, row.menu.kind == MenuRowKind::kItem) << row.menu.name;
}

}  // namespace
