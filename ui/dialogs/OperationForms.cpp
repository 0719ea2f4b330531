#include "ui/dialogs/OperationForms.h"

#include "ui/PathText.h"
#include "ui/controls/DialogControls.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QListWidget>
#include <QLocale>

namespace ui {
namespace {

using files::ItemKind;

QString NameOf(const std::string& path) {
  return NameInText(std::string_view(path).substr(path.rfind('/') + 1));
}

QString FolderOf(const std::string& path) {
  const size_t slash = path.rfind('/');
  return NameInText(slash == 0 || slash == std::string::npos ? "/" : path.substr(0, slash));
}

QString Describe(const files::ItemInfo& item) {
  const QString when =
      QLocale().toString(QDateTime::fromSecsSinceEpoch(item.modified).toLocalTime(), QLocale::ShortFormat);
  const char* text = QT_TRANSLATE_NOOP("ui::ConflictForm", "folder, changed %1");
  if (item.kind == ItemKind::kLink) text = QT_TRANSLATE_NOOP("ui::ConflictForm", "symbolic link, changed %1");
  if (item.kind == ItemKind::kSpecial) text = QT_TRANSLATE_NOOP("ui::ConflictForm", "special file, changed %1");
  if (item.kind != ItemKind::kFile) return ConflictForm::tr(text).arg(when);
  const QString size = item.size == 1 ? ConflictForm::tr("1 byte") : QLocale().formattedDataSize(item.size);
  return ConflictForm::tr("file of %1, changed %2").arg(size, when);
}

QString QuestionOf(const files::Conflict& conflict) {
  const bool folder = conflict.target.kind == ItemKind::kFolder,
             folders = folder && conflict.source.kind == ItemKind::kFolder;
  QString text = folder ? ConflictForm::tr("There is already a folder named \"%1\" in \"%2\".")
                        : ConflictForm::tr("There is already a file named \"%1\" in \"%2\".");
  if (conflict.same)
    text = ConflictForm::tr("\"%1\" in \"%2\" is the very item that should go there.");
  else if (folders && !conflict.mayReplace)
    text += "\r\n" + ConflictForm::tr("It holds the folder that should go there.");
  else if (!conflict.mayReplace)
    text += "\r\n" + ConflictForm::tr("A file and a folder cannot replace each other.");
  else if (folders)
    text += "\r\n" + ConflictForm::tr("Do you want to merge the two folders?");
  else
    text += "\r\n" + ConflictForm::tr("Do you want to replace it?");
  // Both at once: a name may hold a "%2".
  return text.arg(NameOf(conflict.target.path), FolderOf(conflict.target.path));
}

QString CountText(int64_t count) {
  return count == 1 ? OperationReportForm::tr("1 item")
                    : OperationReportForm::tr("%1 items").arg(QLocale().toString(count));
}

QString SummaryOf(const files::OperationOutcome& outcome) {
  QString text = OperationReportForm::tr("Done: %1.  Skipped: %2.  Failed: %3.")
                     .arg(CountText(outcome.done), CountText(outcome.skipped), CountText(outcome.failed));
  if (outcome.cancelled) text += "\r\n" + OperationReportForm::tr("The rest was not done, as you cancelled.");
  const auto listed = static_cast<int64_t>(outcome.failures.size());
  if (listed < outcome.failed)
    text += "\r\n" + OperationReportForm::tr("The first %1 failures:").arg(QLocale().toString(listed));
  return text;
}

void Give(Control& control, const QString& description) {
  control.setAccessibleDescription(description);
}

}  // namespace

ConflictForm::ConflictForm(const files::Conflict& conflict, QWidget* owner) : QuestionForm(owner) {
  setObjectName(QStringLiteral("ConflictForm"));
  setWindowTitle(QCoreApplication::applicationName());
  const bool folders = conflict.source.kind == ItemKind::kFolder && conflict.target.kind == ItemKind::kFolder;
  auto* Label1 = new Label("Label1", QuestionOf(conflict));
  auto* Label2 = new Label("Label2", tr("Already there: %1").arg(Describe(conflict.target)));
  auto* Label3 = new Label("Label3", tr("From the source: %1").arg(Describe(conflict.source)));
  for (Label* label : {Label2, Label3}) label->setWordWrap(false);
  chkAll_ = new CheckBox("chkAll", folders ? tr("&Apply this choice to all other folder conflicts")
                                           : tr("&Apply this choice to all other conflicts"));
  const auto choose = [this](files::ConflictChoice choice) {
    return [this, choice] {
      choice_ = choice;
      accept();
    };
  };
  auto* cmdReplace =
      new Button("cmdReplace", folders ? tr("&Merge") : tr("&Replace"), choose(files::ConflictChoice::kReplace));
  auto* cmdKeepBoth = new Button("cmdKeepBoth", tr("&Keep Both"), choose(files::ConflictChoice::kKeepBoth));
  auto* cmdSkip = new Button("cmdSkip", tr("&Skip"), choose(files::ConflictChoice::kSkip));
  auto* cmdCancel = new Button("cmdCancel", tr("Cancel"), [this] { reject(); });
  cmdReplace->setEnabled(conflict.mayReplace);
  Give(*cmdKeepBoth, tr("What comes gets a number after its name"));
  for (Button* button : {cmdReplace, cmdKeepBoth, cmdSkip, cmdCancel}) button->setAutoDefault(true);
  cmdSkip->setDefault(true);
  LayOutInRows(*this, {{Label1}, {Label2}, {Label3}, {chkAll_}, {cmdReplace, cmdKeepBoth, cmdSkip, cmdCancel}});
  setAccessibleDescription(Label1->text());
  cmdSkip->setFocus();
}

files::ConflictAnswer ConflictForm::answer() const {
  return {result() == Accepted ? choice_ : files::ConflictChoice::kCancel, chkAll_->Value()};
}

FailureForm::FailureForm(const files::OperationFailure& failure, QWidget* owner) : QuestionForm(owner) {
  setObjectName(QStringLiteral("FailureForm"));
  setWindowTitle(QCoreApplication::applicationName());
  auto* Label1 = new Label(
      "Label1", tr("Error: ") + NameInText(failure.path) + QStringLiteral("\r\n") + ShortDisplayText(failure.text));
  chkAll_ = new CheckBox("chkAll", tr("&Skip whatever else fails"));
  const auto choose = [this](files::FailureChoice choice) {
    return [this, choice] {
      choice_ = choice;
      accept();
    };
  };
  auto* cmdRetry = new Button("cmdRetry", tr("&Try Again"), choose(files::FailureChoice::kRetry));
  auto* cmdSkip = new Button("cmdSkip", tr("S&kip"), choose(files::FailureChoice::kSkip));
  auto* cmdCancel = new Button("cmdCancel", tr("Cancel"), [this] { reject(); });
  Give(*cmdSkip, tr("Goes on with the others"));
  cmdSkip->setDefault(true);
  LayOutInRows(*this, {{Label1}, {chkAll_}, {cmdRetry, cmdSkip, cmdCancel}});
  setAccessibleDescription(Label1->text());
  cmdSkip->setFocus();
}

files::FailureAnswer FailureForm::answer() const {
  return {result() == Accepted ? choice_ : files::FailureChoice::kCancel, chkAll_->Value()};
}

OperationReportForm::OperationReportForm(const files::OperationOutcome& outcome, QWidget* owner) : ModalForm(owner) {
  setObjectName(QStringLiteral("OperationReportForm"));
  setWindowTitle(QCoreApplication::applicationName());
  auto* Label1 = new Label("Label1", SummaryOf(outcome));
  auto* List1 = new QListWidget;
  List1->setObjectName(QStringLiteral("List1"));
  List1->setAccessibleName(tr("What failed"));
  List1->setUniformItemSizes(true);
  for (const files::OperationFailure& failure : outcome.failures)
    List1->addItem(ShortDisplayText(failure.path) + QStringLiteral(": ") + ShortDisplayText(failure.text));
  List1->setCurrentRow(0);
  List1->setMinimumSize(480, 160);
  auto* Command1 = new Button("Command1", tr("OK"), [this] { accept(); });
  Command1->setDefault(true);
  LayOutInRows(*this, {{Label1}, {List1}, {Command1}});
  setAccessibleDescription(Label1->text());
  Command1->setFocus();
}

}  // namespace ui
