#include "shell/settings/frmOptions.h"

#include <QEvent>

#include <algorithm>

namespace shell {
namespace {

constexpr int kHelpTopic = 4000;

constexpr std::string services::Settings::*kPrograms[kInternetPrograms] = {
    &services::Settings::EmailApp, &services::Settings::NewsApp, &services::Settings::SNewsApp,
    &services::Settings::FTPApp};

// What a browse button asks for, and the pane that may have such a file open.
struct DataFile {
  int button;
  const char* title;
  std::string_view pane;
  std::string_view beforePath;  // in that pane's caption
};
constexpr DataFile kDataFiles[] = {
    {3, QT_TRANSLATE_NOOP("shell::frmOptions", "Select a quotes or tagline file"), "frmQuotes", ""},
    {6, QT_TRANSLATE_NOOP("shell::frmOptions", "Select a personal notes file"), "frmMyPad", "Notes: "},
    {7, QT_TRANSLATE_NOOP("shell::frmOptions", "Select a text blocks file"), "frmTextBlocks", "Text blocks: "},
    {8, QT_TRANSLATE_NOOP("shell::frmOptions", "Select an Auto-Complete file"), "", ""},
};

std::string FileOf(const ui::Forms& forms, const DataFile& wanted) {
  for (size_t i = 0; i < forms.count(); ++i) {
    ui::Form& form = *forms.at(i);
    if (form.name() != wanted.pane || !form.widget()->isVisible()) continue;
    return form.caption().substr(std::min(wanted.beforePath.size(), form.caption().size()));
  }
  return {};
}

std::string Trimmed(const std::string& text) {
  const size_t begin = text.find_first_not_of(' ');
  return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

}  // namespace

frmOptions::frmOptions(services::Services& services)
    : ModalForm(services.forms().at(0)->widget()), services_(services), TabStrip1_(new ui::TabStrip("TabStrip1")) {
  setObjectName(QStringLiteral("frmOptions"));
  setWindowTitle(tr("Defaults"));
  MakeProjectTab();
  MakeTreeTab();
  MakeQuotesTab();
  MakeFileTabs();
  MakeInternetTab();
  ui::Button* ok = Command1(0, tr("&OK"));
  ok->setDefault(true);
  ui::LayOutInRows(*this, {{TabStrip1_}, {ok, Command1(1, tr("&Cancel")), Command1(5, tr("&Help"))}});
}

ui::Button* frmOptions::Command1(int index, const QString& caption) {
  auto* button = new ui::Button(qPrintable(QStringLiteral("Command1(%1)").arg(index)), caption,
                                [this, index] { Command1_Click(index); });
  button->setAutoDefault(false);
  return button;
}

void frmOptions::MakeProjectTab() {
  const int tab = TabStrip1_->AddTab("Frame2(0)", tr("&Project"), tr("Project"));
  auto* extensions = new ui::Label("Label2", tr("Default open/save file extensions:"));
  Text1_ = new ui::TextBox("Text1");
  Text1_->setAccessibleName(extensions->text());
  TabStrip1_->AddRow(tab, {extensions});
  TabStrip1_->AddRow(tab, {Text1_});

  auto* stops = new ui::Label("Label4", tr("Tab stops:"));
  Text3_ = new ui::TextBox("Text3");
  Text3_->setAccessibleName(stops->text());
  Text3_->setToolTip(tr("In twips, 1440 to an inch"));
  Text3_->SetTypable(QStringLiteral("0123456789 ,\b\t\n\r"));
  TabStrip1_->AddRow(tab, {stops, Text3_}, 1);

  Label1_ = new ui::Label("Label1", {});
  Label3_ = new ui::Label("Label3", {});
  auto* font = new ui::Label("Label5", tr("Font:"));
  auto* size = new ui::Label("Label6", tr("Size:"));
  TabStrip1_->AddRow(tab, {font, Label1_, size, Label3_, Command1(2, tr("&Fonts..."))}, 1);

  auto* background = new ui::Label("Label7", tr("Document background (click to change):"));
  Colors_ = new ui::ColorButton("Command1(4)", tr("&Colors..."), ui::ColorButton::Automatic::kBase,
                                [this] { Command1_Click(4); });
  auto* automatic =
      new ui::Button("Automatic", tr("A&utomatic"), [this] { Colors_->SetColor(services::kSystemWindowColour); });
  automatic->setToolTip(tr("The desktop's own colour"));
  for (ui::Button* button : {static_cast<ui::Button*>(Colors_), automatic}) button->setAutoDefault(false);
  TabStrip1_->AddRow(tab, {background, Colors_, automatic}, 0);

  Check2_ = new ui::CheckBox("Check2", tr("At startup, automatically load most recent project"));
  Check3_ = new ui::CheckBox("Check3", tr("Remember window states"));
  TabStrip1_->AddRow(tab, {Check2_});
  TabStrip1_->AddRow(tab, {Check3_});
}

void frmOptions::MakeTreeTab() {
  const int tab = TabStrip1_->AddTab("Frame2(1)", tr("&Tree view"), tr("Treeview"));
  optDelete_ = {new ui::OptionButton("optDelete(0)", tr("Move to Recycle bin")),
                new ui::OptionButton("optDelete(1)", tr("Delete from disk permanently"))};
  TabStrip1_->AddRow(tab,
                     {new ui::OptionFrame("Frame1", tr("Treeview deletion method:"), {optDelete_[0], optDelete_[1]})});
  Check4_ = new ui::CheckBox("Check4", tr("Automatically synchronize with current directory"));
  TabStrip1_->AddRow(tab, {Check4_});
}

void frmOptions::AddFileRow(int tab, const QString& caption, ui::PathBox& box, int button) {
  auto* label = new ui::Label(qPrintable(QStringLiteral("LabelOf") + box.objectName()), caption);
  label->setBuddy(&box);
  box.setAccessibleName(QString(caption).remove(QLatin1Char('&')));
  ui::Button* browse = Command1(button, tr("Browse..."));
  browse->setAccessibleDescription(box.accessibleName());
  TabStrip1_->AddRow(tab, {label});
  TabStrip1_->AddRow(tab, {&box, browse}, 0);
}

void frmOptions::MakeQuotesTab() {
  const int tab = TabStrip1_->AddTab("Frame2(2)", tr("&Quotes"), tr("Quotes"));
  Text2_ = new ui::PathBox("Text2");
  AddFileRow(tab, tr("Quotes/taglines file to be loaded at startup:"), *Text2_, 3);
  Check1_ = new ui::CheckBox("Check1", tr("Auto-Copy selected quote to clipboard"));
  Check1_->setToolTip(
      tr("Check this if you want each newly selected quote automatically copied to the keyboard (single-click copy)."));
  TabStrip1_->AddRow(tab, {Check1_});
}

void frmOptions::MakeFileTabs() {
  int tab = TabStrip1_->AddTab("Frame2(3)", tr("Text &blocks"), tr("Text blocks"));
  Text5_ = new ui::PathBox("Text5");
  AddFileRow(tab, tr("Text blocks file to be loaded at startup:"), *Text5_, 7);

  tab = TabStrip1_->AddTab("Frame2(4)", tr("&Auto-Complete"), tr("Auto-Complete"));
  Text6_ = new ui::PathBox("Text6");
  AddFileRow(tab, tr("Auto-complete file to be loaded at startup:"), *Text6_, 8);
  Check5_ = new ui::CheckBox("Check5", tr("Enable Auto-Complete at startup"));
  TabStrip1_->AddRow(tab, {Check5_});

  tab = TabStrip1_->AddTab("Frame2(5)", tr("&Notes"), tr("Notes"));
  Text4_ = new ui::PathBox("Text4");
  AddFileRow(tab, tr("Personal notes file to be loaded at startup:"), *Text4_, 6);
}

void frmOptions::MakeInternetTab() {
  const int tab = TabStrip1_->AddTab("Frame2(6)", tr("&Internet"), tr("Internet"));
  const QString captions[kInternetPrograms] = {tr("&Email:"), tr("&News:"), tr("&Snews:"), tr("&FTP:")};
  for (size_t i = 0; i < kInternetPrograms; ++i) {
    Text7_[i] = new ui::PathBox(qPrintable(QStringLiteral("Text7(%1)").arg(i)));
    AddFileRow(tab, captions[i], *Text7_[i], static_cast<int>(i) + 9);
  }
}

void frmOptions::Fill(const services::Settings& settings) {
  Check2_->SetValue(settings.AutoLoadProject);
  Check3_->SetValue(settings.SaveWindowState);
  Text3_->SetText(QString::fromStdString(settings.Tabs));
  Text1_->SetText(QString::fromStdString(settings.Extensions));
  Label1_->SetText(settings.Font.name);
  Label3_->SetText(QString::fromStdString(services::WriteNumber(settings.Font.size)));
  Colors_->SetColor(settings.DocBackColor);
  Check4_->SetValue(settings.TreeSync);
  optDelete_[settings.TreeDelMethod ? 1 : 0]->SetValue(true);
  Check1_->SetValue(settings.AutoCopy);
  Text2_->SetPath(settings.QuoteFile);
  Text4_->SetPath(settings.NotesFile);
  Text5_->SetPath(settings.TextBlocks);
  Check5_->SetValue(settings.AutoCompleteAtStartup);
  Text6_->SetPath(settings.AutoTagFile);
  for (size_t i = 0; i < kInternetPrograms; ++i) Text7_[i]->SetPath(settings.*kPrograms[i]);
}

void frmOptions::ReadBack(services::Settings& settings) const {
  settings.AutoLoadProject = Check2_->Value();
  settings.SaveWindowState = Check3_->Value();
  settings.Tabs = Text3_->Text().trimmed().toStdString();
  settings.DocBackColor = Colors_->color() < 0 ? services::kSystemWindowColour : static_cast<int>(Colors_->color());
  settings.Font.name = Label1_->text();
  settings.Font.size = services::ReadNumber(Label3_->text().toStdString()).value_or(settings.Font.size);
  settings.Extensions = Text1_->Text().trimmed().toStdString();
  settings.TreeSync = Check4_->Value();
  settings.TreeDelMethod = optDelete_[1]->Value();
  settings.AutoCopy = Check1_->Value();
  settings.QuoteFile = Text2_->Path();
  settings.NotesFile = Text4_->Path();
  settings.TextBlocks = Text5_->Path();
  settings.AutoCompleteAtStartup = Check5_->Value();
  settings.AutoTagFile = Text6_->Path();
  const services::Settings defaults;
  for (size_t i = 0; i < kInternetPrograms; ++i) {
    const std::string program = Trimmed(Text7_[i]->Path());
    settings.*kPrograms[i] = program.empty() ? defaults.*kPrograms[i] : program;
  }
}

void frmOptions::Command1_Click(int index) {
  if (index == 2) return PickFont();
  if (index == 4) return PickColor();
  if (index == 5) return services_.ShowHelpContext(kHelpTopic);
  if (index >= 9) return BrowseForProgram(index);
  if (std::ranges::count(kDataFiles, index, &DataFile::button)) return BrowseForFile(index);
  Tag = std::to_string(index);
  done(index == 0 ? Accepted : Rejected);
}

bool frmOptions::event(QEvent* event) {
  if (event->type() == QEvent::Show && Tag == "A") Tag.clear();
  return ModalForm::event(event);
}

void frmOptions::PickFont() {
  const double size = services::ReadNumber(Label3_->text().toStdString()).value_or(10);
  const auto chosen = services_.dialogs().PickFont(services_.forms().at(0),
                                                   {.family = Label1_->text().trimmed(), .points = size, .plain = true},
                                                   services_.customColors());
  if (!chosen) return;
  Label1_->SetText(chosen->family);
  Label3_->SetText(QString::fromStdString(services::WriteNumber(chosen->points)));
}

void frmOptions::PickColor() {
  const int64_t chosen = services_.ShowColorDialog(services_.forms().at(0), Colors_->shownColor());
  if (chosen >= 0) Colors_->SetColor(chosen);
}

void frmOptions::BrowseForFile(int index) {
  const DataFile& wanted = *std::ranges::find(kDataFiles, index, &DataFile::button);
  ui::PathBox& box = index == 3 ? *Text2_ : index == 6 ? *Text4_ : index == 7 ? *Text5_ : *Text6_;
  const std::string initial = box.Path().empty() ? FileOf(services_.forms(), wanted) : box.Path();
  const files::Path chosen =
      services_.ShowOpenDialog({.owner = services_.forms().at(0),
                                .defaultExtension = ".txt",
                                .filter = QStringLiteral("Text files (*.txt)|*.txt|All Files|*.*"),
                                .flags = services::kFileMustExist + services::kNoChangeDir + services::kHideReadOnly,
                                .title = tr(wanted.title),
                                .initialFile = services::PathOfSetting(initial)});
  if (!chosen.empty()) box.SetPath(chosen.native());
}

void frmOptions::BrowseForProgram(int index) {
  ui::PathBox& box = *Text7_[static_cast<size_t>(index - 9)];
  const files::Path chosen =
      services_.ShowOpenDialog({.owner = services_.forms().at(0),
                                .filter = QStringLiteral("Application files (*.exe)|*.exe|All Files|*.*"),
                                .flags = services::kFileMustExist + services::kNoChangeDir + services::kHideReadOnly +
                                         services::kNoDereferenceLinks,
                                .title = tr("Select a URL protocol application"),
                                .initialFile = Trimmed(box.Path())});
  if (!chosen.empty()) box.SetPath(chosen.native());
}

}  // namespace shell
