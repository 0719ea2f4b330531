#include "search/frmFind.h"

#include "services/Messages.h"
#include "ui/PendingEvents.h"
#include "ui/editor/RichTextBox.h"

namespace search {
namespace {

// The selection, cut to what fits into a box, at a character's border.
QString SelectionFor(const ui::RichTextBox& box) {
  if (box.SelLength() <= ui::ComboBox::kMostText) return box.SelText();
  const text::Content& content = box.document().content();
  const text::SurfaceUnits begin(box.SelStart());
  const text::SurfaceUnits end = begin + text::SurfaceUnits(ui::ComboBox::kMostText);
  return QString::fromStdU16String(
      content.Utf16({content.FromSurface(begin, text::Bias::kLeft), content.FromSurface(end, text::Bias::kLeft)},
                    text::BreakAs::kCrLf));
}

}  // namespace

frmFind::frmFind(services::Services& services, FindEngine& engine)
    : ModelessForm(services.forms(), "frmFind", *services.forms().at(0)), services_(services), engine_(engine) {
  SetCaption(tr("Find/Replace").toStdString());
  MakeControls();
  Option1_[0]->SetValue(true);
  Label3_->setVisible(false);
  connect(Combo1_[0], &ui::ComboBox::Change, this, &frmFind::Combo1_Change);
  connect(chkCase_, &ui::CheckBox::toggled, this, &frmFind::Option_Click);
  connect(chkWhole_, &ui::CheckBox::toggled, this, &frmFind::Option_Click);
  for (int i : {0, 1}) connect(Option1_[i], &ui::OptionButton::clicked, this, [this, i] { Option1_Click(i); });
}

void frmFind::MakeControls() {
  Label1_ = new ui::Label("Label1", tr("Fi&nd What:"));
  Label2_ = new ui::Label("Label2", tr("Re&place with:"));
  Label3_ = new ui::Label("Label3", {});
  Combo1_ = {new ui::ComboBox("Combo1(0)"), new ui::ComboBox("Combo1(1)")};
  chkCase_ = new ui::CheckBox("chkCase", tr("Match &Case"));
  chkWhole_ = new ui::CheckBox("chkWhole", tr("Match &Whole word only"));
  Option1_ = {new ui::OptionButton("Option1(0)", tr("Current document")),
              new ui::OptionButton("Option1(1)", tr("All documents"))};
  cmdFind_ = MakeButton("cmdFind", tr("&Find next"), &frmFind::cmdFind_Click);
  cmdReplace_ = MakeButton("cmdReplace", tr("&Replace"), &frmFind::cmdReplace_Click);
  cmdReplaceAll_ = MakeButton("cmdReplaceAll", tr("Replace &All"), &frmFind::cmdReplaceAll_Click);
  cmdcancel_ = MakeButton("cmdcancel", tr("&Cancel"), &frmFind::cmdcancel_Click);
  cmdFind_->setDefault(true);
  ui::LayOutFields(*widget(), {.fields = {{Label1_, Combo1_[0]}, {Label2_, Combo1_[1]}},
                               .options = {{chkCase_, chkWhole_}, {Option1_[0], Option1_[1]}},
                               .line = Label3_,
                               .buttons = {cmdFind_, cmdReplace_, cmdReplaceAll_, cmdcancel_}});
  ui::OnKey(*widget(), "F3", [this] { cmdFind_->click(); });
}

ui::Button* frmFind::MakeButton(const char* name, const QString& caption, void (frmFind::*click)()) {
  return new ui::Button(name, caption, [this, click] {
    const ui::CommandScope scope;
    services_.forms().Guarded([&] { (this->*click)(); });
  });
}

// --- Opening

void frmFind::Open(std::string tag) {
  const ui::RichTextBox& box = *services_.EditorOf(services_.ActiveSlot());
  Tag = std::move(tag);
  Combo1_[0]->SetText(box.SelLength() > 0 ? SelectionFor(box) : engine_.SearchText);
  Combo1_[1]->SetText(engine_.ReplaceText);
  engine_.NewSearch = true;
  if (engine_.MatchCase != 0) chkCase_->SetValue(true);
  if (engine_.MatchWholeWord != 0) chkWhole_->SetValue(true);
  const bool again = FindActivated_;
  Activate();
  Form_Activate();
  if (again) {
    if (Tag == "R" && !Combo1_[0]->Text().isEmpty()) EnableReplacing(true);
    Combo1_[0]->setFocus();
  }
  UncoverSelection();
}

void frmFind::Form_Activate() {
  if (FindActivated_) return;
  FindActivated_ = true;
  SetEnabled(false);
  Label3_->SetText({});
  Combo1_Change();
  ui::LetPendingEventsRun();
  Combo1_[0]->setFocus();
}

void frmFind::EnableReplacing(bool enabled) {
  Combo1_[1]->setEnabled(enabled);
  Label2_->setEnabled(enabled);
  cmdReplaceAll_->setEnabled(enabled);
  if (enabled) Label3_->setVisible(true);
}

void frmFind::SetEnabled(bool enabled) {
  cmdFind_->setEnabled(enabled);
  cmdReplace_->setEnabled(enabled);
  if (!enabled || Tag == "R") EnableReplacing(enabled);
}

void frmFind::Combo1_Change() {
  engine_.NewSearch = true;
  engine_.FindAllStartDoc = 0;
  const bool empty = Combo1_[0]->Text().isEmpty();
  SetEnabled(!empty);
  if (empty) Label3_->setVisible(false);
}

void frmFind::Option_Click() {
  engine_.MatchCase = chkCase_->Value() ? 1 : 0;
  engine_.MatchWholeWord = chkWhole_->Value() ? 1 : 0;
  engine_.NewSearch = true;
  engine_.FindAllStartDoc = 0;
}

void frmFind::Option1_Click(int index) {
  engine_.SearchAllDocuments = index != 0;
  engine_.NewSearch = true;
  engine_.FindAllStartDoc = 0;
}

// --- The buttons

bool frmFind::HasDocument() {
  if (services_.ActiveSlot() != 0) return true;
  services::ShowNoDocument(services_);
  return false;
}

void frmFind::FindAndShow() {
  if (engine_.FindNext() >= 0) UncoverSelection();
}

void frmFind::UncoverSelection() {
  const ui::RichTextBox* box = services_.EditorOf(services_.ActiveSlot());
  if (box) KeepClearOf(box->SelectionOnScreen());
}

void frmFind::cmdFind_Click() {
  if (!HasDocument()) return;
  engine_.SearchText = Combo1_[0]->Text();
  FindAndShow();
  AddToSearchHistory();
}

void frmFind::cmdReplace_Click() {
  if (!cmdReplaceAll_->isEnabled()) return EnableReplacing(true);
  if (!HasDocument()) return;
  Label3_->SetText({});
  engine_.SearchText = Combo1_[0]->Text();
  if (engine_.SelectionIsSearchText()) services_.EditorOf(services_.ActiveSlot())->SetSelText(Combo1_[1]->Text());
  FindAndShow();
  AddToSearchHistory();
}

void frmFind::cmdReplaceAll_Click() {
  if (!HasDocument()) return;
  Label3_->SetText({});
  engine_.SearchText = Combo1_[0]->Text();
  engine_.ReplaceAll(Combo1_[1]->Text(), [this](int64_t count) {
    Label3_->SetText(tr("%1 replacements were made.").arg(QString::number(count)));
  });
  AddToSearchHistory();
}

void frmFind::cmdcancel_Click() {
  engine_.FindAllStartDoc = 0;
  engine_.ReplaceText = Combo1_[1]->Text();
  Tag.clear();
  FindActivated_ = false;
  Hide();
  services_.forms().at(0)->Activate();
}

bool frmFind::Close() {
  if (isShown()) cmdcancel_Click();
  return true;
}

void frmFind::AddToSearchHistory() {
  for (ui::ComboBox* box : Combo1_) box->AddTextToList();
}

}  // namespace search
