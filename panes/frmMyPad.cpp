#include "panes/frmMyPad.h"

#include "panes/Notes.h"
#include "services/Messages.h"
#include "ui/PathText.h"
#include "ui/PendingEvents.h"
#include "ui/frame/PaneLayout.h"

#include <QScopedValueRollback>

#include <new>

namespace panes {
namespace {

constexpr std::string_view kPrefix = "Notes: ";

}  // namespace

frmMyPad::frmMyPad(services::Services& services, Notes& notes)
    : TextPane(services, "frmMyPad", kPrefix, Qt::TopEdge | Qt::RightEdge), notes_(notes) {
  Text1().setAccessibleName(tr("Notes"));
  connect(&Text1(), &ui::RichTextBox::Change, this, [this] { ShowChanged(NotesChanged()); });
  OwnKey("Ctrl+S", [this] { notes_.mnuNotesSave_Click(); });
  const services::PadSize& size = services.settings().MyPadSize;
  SetSize({size.width / ui::kTwipsPerPixel, size.height / ui::kTwipsPerPixel});
  firstSize_ = Size();
}

void frmMyPad::MyShow(const files::Path& path, ui::Keyboard keyboard) {
  const ui::CommandScope scope;
  if (NotesChanged()) {
    const QString question = ui::DisplayText(this->path().native()) +
                             tr(" has changed.\r\nDo you want to save the changes before continuing?");
    if (!Ask(question)) return;
    if (rescue_ && !Rescue()) return;
  }
  if (!Load(path)) return;
  ForgetKept();
  // What is typed takes the place of the message.
  if (error()) Text1().SelectAll();
  services().ToggleNotesSave(true);
  Show(keyboard);
  Text1().document().SetSaved();
  ShowChanged(false);
}

// What the user wants done with changed notes. False: cancelled.
bool frmMyPad::Ask(const QString& question) {
  if (asking_) return false;
  const QScopedValueRollback asking(asking_, true);
  rescue_ = false;
  const ui::Answer answer = services().dialogs().ShowMessage(
      this, {.text = question, .buttons = ui::Buttons::kYesNoCancel, .icon = ui::Icon::kExclamation});
  if (answer == ui::Answer::kYes) rescue_ = !SaveText1();
  return answer != ui::Answer::kCancel;
}

bool frmMyPad::SaveText1() {
  const ui::CommandScope scope;
  // A message is nobody's notes.
  if (error() && !NotesChanged()) return false;
  TextBytes text{Text1().document().content(), Text1().document().properties()};
  if (!AskEncoding(text) || !AskBeforeReplacing()) return false;
  std::optional<files::Result<files::FileStamp>> saved;
  try {
    services().dialogs().RunWork(this, tr("Saving %1").arg(ui::DisplayText(path().native())),
                                 text.content.sums().bytes.value(), [&](ui::WorkPort& port) {
                                   saved = SaveTextFile(path(), services().recoveryFolder(), text,
                                                        [&port](int64_t done) { return port.Report(done); });
                                 });
  } catch (const std::bad_alloc&) {
  }
  if (!saved || !*saved) {
    Beep();
    // Silence must not hide where the copies are.
    if (saved && saved->error().damaged)
      services::ShowError(services().dialogs(), this, services::ErrorText(path().native(), saved->error()));
    return false;
  }
  TakeSaved(saved->value());
  ForgetKept();
  ui::RichTextBox& box = Text1();
  box.document().properties() = text.properties;
  // An input method may have delivered text meanwhile: that is not in the file.
  if (box.document().content().SameAs(text.content)) box.document().SetSaved();
  ShowChanged(NotesChanged());
  return !NotesChanged();
}

// Whether a file that this pad has not read, or not as it is now, may be replaced.
bool frmMyPad::AskBeforeReplacing() {
  const auto now = files::StampOf(path());
  if (!error() && (!now || now == stamp())) return true;
  QString why = tr("has been changed by another program since it was opened.  Do you want to replace it?");
  if (error() && !now) why = tr("does not exist.  Do you want to create it and save the notes there?");
  if (error() && now) why = tr("could not be read when it was opened.  Do you want to save what is in the pad there?");
  const ui::Message question{services::FileText(path().native(), why), ui::Buttons::kYesNo, ui::Icon::kExclamation};
  return services().dialogs().ShowMessage(this, question) == ui::Answer::kYes;
}

bool frmMyPad::AskEncoding(TextBytes& text) {
  if (!text::FirstUnencodable(text.content, text.properties.encoding)) return true;
  const QString why = tr("contains characters that its encoding cannot hold.  Save as UTF-8?");
  const ui::Message question{services::FileText(path().native(), why), ui::Buttons::kYesNo, ui::Icon::kExclamation};
  if (services().dialogs().ShowMessage(this, question) != ui::Answer::kYes) return false;
  text.properties.encoding = text::Encoding::kUtf8;
  text.properties.byteOrderMark = false;
  return true;
}

// --- Closing

bool frmMyPad::Close() {
  const ui::CommandScope scope;
  return QueryUnload() && Unload();
}

bool frmMyPad::QueryUnload() {
  rescue_ = false;
  const bool goes =
      !NotesChanged() || Ask(tr("Notes file has changed.\r\nDo you want to save the changes before continuing?"));
  asked_ = Text1().document().content();
  return goes;
}

bool frmMyPad::Unload() {
  // An input method may have delivered text after the question.
  if (asked_ && !Text1().document().content().SameAs(*asked_) && !QueryUnload()) return false;
  if (rescue_ && !Rescue()) return false;
  ForgetKept();
  RecordState();
  TakeDown();
  notes_.Release();
  return true;
}

void frmMyPad::RecordState() {
  services().settings().MyPadState = static_cast<int>(windowState());
  if (isMaximized() || Size() == firstSize_) return;
  services().settings().MyPadSize = {.height = Size().height() * ui::kTwipsPerPixel,
                                     .width = Size().width() * ui::kTwipsPerPixel};
}

// The text that could not be saved goes to the recovery folder.
bool frmMyPad::Rescue() {
  rescue_ = false;
  const auto error = KeepText();
  // It is offered at the next start, and no longer this pad's.
  if (!error) kept_.reset();
  if (error) services::ShowError(services().dialogs(), this, services::ErrorText(path().native(), *error));
  return !error;
}

std::optional<files::Error> frmMyPad::KeepText() {
  TextBytes text{Text1().document().content(), Text1().document().properties()};
  // Kept before, and since then saved or undone.
  if (!NotesChanged()) ForgetKept();
  if (!NotesChanged() || (kept_ && text.content.SameAs(*keptContent_))) return std::nullopt;
  if (text::FirstUnencodable(text.content, text.properties.encoding)) text.properties = {};
  auto written = KeepTextFile(path(), services().recoveryFolder(), text, stamp());
  if (!written) return written.error();
  ForgetKept();
  kept_ = std::move(written).value();
  keptContent_ = std::move(text.content);
  return std::nullopt;
}

// When it cannot be removed it is offered once more, which loses nothing.
void frmMyPad::ForgetKept() {
  if (kept_) static_cast<void>(files::RemoveRecovery(*kept_));
  kept_.reset();
}

}  // namespace panes
