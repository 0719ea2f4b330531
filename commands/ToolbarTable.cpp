#include "commands/ToolbarTable.h"

#include <QtGlobal>

namespace commands {
namespace {

using documents::frmText;
using services::SelectionState;
using ui::FaceClick;

template <auto Handler>
void On(frmText& document) {
  static_cast<void>((document.*Handler)());
}

constexpr ui::ToolBarMenuRow kProjectOrDocument[] = {{QT_TRANSLATE_NOOP("Toolbar", "&Project"), "Project"},
                                                     {QT_TRANSLATE_NOOP("Toolbar", "&Document"), "Document"}};
constexpr ui::ToolBarMenuRow kOpenMenu[] = {{QT_TRANSLATE_NOOP("Toolbar", "&Project..."), "Project"},
                                            {QT_TRANSLATE_NOOP("Toolbar", "&Document..."), "Document"}};

constexpr ToolbarCommand kNewCommands[] = {{.command = &Commands::mnuNewProject_Click},
                                           {.command = &Commands::mnuNew_Click}};
constexpr ToolbarCommand kOpenCommands[] = {{.command = &Commands::mnuOpen_Click},
                                            {.command = &Commands::mnuOpenFile_Click}};
constexpr ToolbarCommand kSaveCommands[] = {{.command = &Commands::mnuSaveProject_Click},
                                            {.document = On<&frmText::mnuSaveFile_Click>}};

constexpr ui::ToolBarMenuRow kStripMenu[] = {{QT_TRANSLATE_NOOP("Toolbar", "&CRLF's"), "CRLF"},
                                             {QT_TRANSLATE_NOOP("Toolbar", "Excess &blanks"), "Blanks"},
                                             {QT_TRANSLATE_NOOP("Toolbar", "&ASCII character..."), "ASCII"}};
constexpr ToolbarCommand kStripCommands[] = {{.document = On<&frmText::mnuStrip_Click>},
                                             {.document = On<&frmText::mnuStripBlanks_Click>},
                                             {.document = On<&frmText::mnuStripASCII_Click>}};

constexpr ui::ToolBarMenuRow kQuotesMenu[] = {{QT_TRANSLATE_NOOP("Toolbar", "&Load a quotes file..."), "Load"},
                                              {QT_TRANSLATE_NOOP("Toolbar", "&Find a quote..."), "Find"},
                                              {QT_TRANSLATE_NOOP("Toolbar", "Find &next quote"), "Next"},
                                              {QT_TRANSLATE_NOOP("Toolbar", "&Pick random quote"), "Random"},
                                              {QT_TRANSLATE_NOOP("Toolbar", "&Copy quote"), "Copy"}};
constexpr ToolbarCommand Quote(void (Commands::*command)()) {
  return {.command = command, .usable = &Commands::QuotesOptions};
}
constexpr ToolbarCommand kQuotesCommands[] = {{.command = &Commands::mnuLoadQuotes_Click},
                                              Quote(&Commands::mnuFindQuote_Click),
                                              Quote(&Commands::mnuFindNextQuote_Click),
                                              Quote(&Commands::mnuRandom_Click),
                                              Quote(&Commands::mnuCopyQuote_Click)};

// A button that only opens menus.
constexpr ToolbarRow Drop(const char* key, const char* longText, const char* shortText, const char* icon,
                          FaceClick face, std::span<const ui::ToolBarMenuRow> menu,
                          std::span<const ToolbarCommand> commands) {
  return {.button = {key, longText, shortText, icon, face, false, false, menu}, .menu = commands};
}

constexpr ToolbarRow Doc(const char* key, const char* longText, const char* shortText, const char* icon,
                         void (*handler)(frmText&)) {
  return {.button = {key, longText, shortText, icon}, .face = {.document = handler}, .needsDocument = true};
}

// A command of the main window that works in the active document.
constexpr ToolbarRow Main(const char* key, const char* longText, const char* shortText, const char* icon,
                          void (Commands::*command)()) {
  return {.button = {key, longText, shortText, icon}, .face = {.command = command}, .needsDocument = true};
}

constexpr ToolbarRow Flag(const char* key, const char* longText, const char* shortText, const char* icon,
                          void (*handler)(frmText&), std::optional<bool> SelectionState::*state) {
  ToolbarRow row = Doc(key, longText, shortText, icon, handler);
  row.button.toggles = true;
  row.state = state;
  return row;
}

constexpr ToolbarRow Align(const char* key, const char* longText, const char* shortText, const char* icon,
                           void (*handler)(frmText&), int alignment) {
  ToolbarRow row = Doc(key, longText, shortText, icon, handler);
  row.button.toggles = true;
  row.alignment = alignment;
  return row;
}

// Of the main window, and always enabled.
constexpr ToolbarRow Choice(const char* key, const char* longText, const char* shortText, const char* icon,
                            void (Commands::*command)(), bool (Commands::*chosen)() const) {
  ToolbarRow row{.button = {key, longText, shortText, icon}, .face = {.command = command}, .chosen = chosen};
  row.button.toggles = true;
  return row;
}

constexpr ToolbarRow NeedsDocument(ToolbarRow row) {
  row.needsDocument = true;
  return row;
}

constexpr ToolbarRow Group(ToolbarRow row) {
  row.button.newGroup = true;
  return row;
}

// clang-format off
constexpr ToolbarRow kButtons[] = {
  Drop("New", QT_TRANSLATE_NOOP("Toolbar", "Create a new project or document"), QT_TRANSLATE_NOOP("Toolbar", "New"), "new", FaceClick::kOpensMenu, kProjectOrDocument, kNewCommands),
  Drop("Open", QT_TRANSLATE_NOOP("Toolbar", "Open a project or document..."), QT_TRANSLATE_NOOP("Toolbar", "Open"), "open", FaceClick::kNothing, kOpenMenu, kOpenCommands),
  Drop("Save", QT_TRANSLATE_NOOP("Toolbar", "Save project or document..."), QT_TRANSLATE_NOOP("Toolbar", "Save"), "save", FaceClick::kNothing, kProjectOrDocument, kSaveCommands),
  Group(Doc("Print", QT_TRANSLATE_NOOP("Toolbar", "Print document..."), QT_TRANSLATE_NOOP("Toolbar", "Print"), "print", On<&frmText::mnuPrint_Click>)),
  Doc("View", QT_TRANSLATE_NOOP("Toolbar", "View in external application"), QT_TRANSLATE_NOOP("Toolbar", "View"), "view", On<&frmText::mnuViewFile_Click>),
  Group(Main("Find", QT_TRANSLATE_NOOP("Toolbar", "Find..."), QT_TRANSLATE_NOOP("Toolbar", "Find"), "find", &Commands::mnuFind_Click)),
  Group(Doc("Cut", QT_TRANSLATE_NOOP("Toolbar", "Cut selected text"), QT_TRANSLATE_NOOP("Toolbar", "Cut"), "cut", On<&frmText::mnuCut_Click>)),
  Doc("Copy", QT_TRANSLATE_NOOP("Toolbar", "Copy to clipboard"), QT_TRANSLATE_NOOP("Toolbar", "Copy"), "copy", On<&frmText::mnuCopy_Click>),
  Doc("Paste", QT_TRANSLATE_NOOP("Toolbar", "Paste from clipboard"), QT_TRANSLATE_NOOP("Toolbar", "Paste"), "paste", On<&frmText::mnuPaste_Click>),
  Doc("Clear", QT_TRANSLATE_NOOP("Toolbar", "Clear selected text"), QT_TRANSLATE_NOOP("Toolbar", "Clear"), "clear", On<&frmText::mnuDelete_Click>),
  Group(Flag("Bold", QT_TRANSLATE_NOOP("Toolbar", "Bold"), QT_TRANSLATE_NOOP("Toolbar", "Bold"), "bold", On<&frmText::mnuBold_Click>, &SelectionState::bold)),
  Flag("Italics", QT_TRANSLATE_NOOP("Toolbar", "Italics"), QT_TRANSLATE_NOOP("Toolbar", "Italics"), "italic", On<&frmText::mnuItalic_Click>, &SelectionState::italic),
  Flag("Underline", QT_TRANSLATE_NOOP("Toolbar", "Underline"), QT_TRANSLATE_NOOP("Toolbar", "Underline"), "underline", On<&frmText::mnuUnderline_Click>, &SelectionState::underline),
  Flag("Strikethru", QT_TRANSLATE_NOOP("Toolbar", "Strikethru"), QT_TRANSLATE_NOOP("Toolbar", "Strikethru"), "strikethru", On<&frmText::mnuStrikeThru_Click>, &SelectionState::strikeThru),
  Doc("Font", QT_TRANSLATE_NOOP("Toolbar", "Change font..."), QT_TRANSLATE_NOOP("Toolbar", "Font"), "font", On<&frmText::mnuFont_Click>),
  Group(Align("Align left", QT_TRANSLATE_NOOP("Toolbar", "Align left"), QT_TRANSLATE_NOOP("Toolbar", "Left"), "align-left", On<&frmText::mnuAlignLeft_Click>, 0)),
  Align("Align center", QT_TRANSLATE_NOOP("Toolbar", "Align center"), QT_TRANSLATE_NOOP("Toolbar", "Center"), "align-center", On<&frmText::mnuAlignCenter_Click>, 2),
  Align("Align right", QT_TRANSLATE_NOOP("Toolbar", "Align right"), QT_TRANSLATE_NOOP("Toolbar", "Right"), "align-right", On<&frmText::mnuAlignRight_Click>, 1),
  Flag("Bullet", QT_TRANSLATE_NOOP("Toolbar", "Bullet..."), QT_TRANSLATE_NOOP("Toolbar", "Bullet"), "bullet", On<&frmText::mnuBullet_Click>, &SelectionState::bullet),
  Flag("Protected", QT_TRANSLATE_NOOP("Toolbar", "Protected"), QT_TRANSLATE_NOOP("Toolbar", "Protected"), "protected", On<&frmText::mnuProtect_Click>, &SelectionState::protectedText),
  Group(Choice("Auto", QT_TRANSLATE_NOOP("Toolbar", "Enable/disable Auto-Complete"), QT_TRANSLATE_NOOP("Toolbar", "Auto-Complete"), "auto-complete", &Commands::mnuAutoCompleteToggle_Click, &Commands::AutoCompleteOn)),
  Group(NeedsDocument(Drop("Strip", QT_TRANSLATE_NOOP("Toolbar", "Strip characters..."), QT_TRANSLATE_NOOP("Toolbar", "Strip"), "strip", FaceClick::kOpensMenu, kStripMenu, kStripCommands))),
  Group(Drop("Quotes", QT_TRANSLATE_NOOP("Toolbar", "Quotes"), QT_TRANSLATE_NOOP("Toolbar", "Quotes"), "quotes", FaceClick::kOpensMenu, kQuotesMenu, kQuotesCommands)),
};
// clang-format on

}  // namespace

std::span<const ToolbarRow> ToolbarTable() {
  return kButtons;
}

}  // namespace commands
