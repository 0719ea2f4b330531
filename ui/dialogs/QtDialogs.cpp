#include "ui/dialogs/QtDialogs.h"

#include "files/Attributes.h"
#include "ui/Forms.h"
#include "ui/Hourglass.h"
#include "ui/PathText.h"
#include "ui/PendingEvents.h"
#include "ui/dialogs/ColorNumber.h"
#include "ui/dialogs/ColorPicker.h"
#include "ui/dialogs/FontForm.h"
#include "ui/dialogs/InputForm.h"
#include "ui/dialogs/Printer.h"
#include "ui/dialogs/ProgressForm.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCoreApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QPrintDialog>
#include <QPushButton>
#include <QRegularExpression>
#include <QTreeView>

namespace ui {
namespace {

// A dialog that is open already would cover the next one if that were not its own.
QWidget* WidgetOf(Form* owner) {
  if (QWidget* modal = QApplication::activeModalWidget()) return modal;
  return owner ? owner->widget() : nullptr;
}

QMessageBox::Icon ToQt(Icon icon) {
  switch (icon) {
    case Icon::kNone:
      break;
    case Icon::kInformation:
      return QMessageBox::Information;
    case Icon::kQuestion:
      return QMessageBox::Question;
    case Icon::kExclamation:
      return QMessageBox::Warning;
  }
  return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons ToQt(Buttons buttons) {
  switch (buttons) {
    case Buttons::kOk:
      return QMessageBox::Ok;
    case Buttons::kYesNo:
      return QMessageBox::Yes | QMessageBox::No;
    case Buttons::kYesNoCancel:
      return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
  }
  return QMessageBox::Ok;
}

// A line ends between words only, and a long name is one.
QString WithPlacesToBreak(const QString& text) {
  constexpr int kLongestWord = 80;
  QString result;
  int word = 0;
  for (const QChar c : text) {
    if (word >= kLongestWord && !c.isLowSurrogate() && !c.isMark()) {
      result += QChar(0x200B);
      word = 0;
    }
    word = c.isSpace() || c == QLatin1Char('/') ? 0 : word + 1;
    result += c;
  }
  return result;
}

// "*.*" means every file, also one without a dot.
QString NameFilterOf(const FileFilter& filter) {
  QString masks;
  for (const QString& mask : filter.pattern.split(QLatin1Char(';'), Qt::SkipEmptyParts))
    masks += (masks.isEmpty() ? "" : " ") + (mask == QLatin1String("*.*") ? QStringLiteral("*") : mask.trimmed());
  QString description = filter.description;
  description.truncate(description.lastIndexOf(QLatin1String(" (")) < 0 ? description.size()
                                                                        : description.lastIndexOf(QLatin1String(" (")));
  return description + QLatin1String(" (") + masks + QLatin1Char(')');
}

// The toolkit's own dialog takes a name with quotes for a list of names.
class FileDialog final : public QFileDialog {
 public:
  using QFileDialog::QFileDialog;
  QString chosen() const { return quoted_.isEmpty() ? selectedFiles().value(0) : quoted_; }

 protected:
  void accept() override {
    const auto* name = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    if (!name || !name->text().contains(QLatin1Char('"'))) return QFileDialog::accept();
    const QString path = directory().absoluteFilePath(name->text());
    if (QFileInfo(path).isDir()) return setDirectory(path);
    quoted_ = path;
    QDialog::accept();  // NOLINT(bugprone-parent-virtual-call): the file dialog would ask for the name again
  }

 private:
  QString quoted_;
};

// What the names of this kind end in: ".htm" for "*.htm*", nothing for all files.
QString ExtensionOf(const FileFilter& filter) {
  static const QRegularExpression kOneEnding(QStringLiteral(R"(^\s*\*(\.[^*?\[/;]+)\*?\s*(;|$))"));
  return kOneEnding.match(filter.pattern).captured(1);
}

// nullptr: the desktop's dialog knows it by another name.
const FileFilter* FilterNamed(const QFileDialog& dialog, const FileRequest& request, const QString& name) {
  const qsizetype index = dialog.nameFilters().indexOf(name);
  return index < 0 ? nullptr : &request.filters[static_cast<size_t>(index)];
}

// The toolkit's own dialog gives the name the ending of the chosen mask, its asterisk too.
void KeepMaskOutOfName(QFileDialog& dialog, const FileRequest& request) {
  QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, [&dialog, &request](const QString& chosen) {
    auto* name = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    const FileFilter* filter = FilterNamed(dialog, request, chosen);
    if (!name || !filter) return;
    const QString extension = ExtensionOf(*filter);
    if (!extension.isEmpty() && name->text().endsWith(extension + QLatin1Char('*')))
      name->setText(name->text().chopped(1));
  });
}

// A name without any extension gets that of the kind that was chosen in the dialog. The kind it began with is the
// caller's affair.
files::Path WithChosenExtension(const files::Path& path, const QFileDialog& dialog, const FileRequest& request) {
  const FileFilter* filter = FilterNamed(dialog, request, dialog.selectedNameFilter());
  const bool chosen = filter && filter - request.filters.data() + 1 != request.filterIndex;
  if (!chosen || path.filename().native().find('.') != std::string::npos || files::GetAttributes(path)) return path;
  return files::Path(path.native() + ExtensionOf(*filter).toStdString());
}

void Prepare(QFileDialog& dialog, const FileRequest& request) {
  dialog.setAcceptMode(request.save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  dialog.setFileMode(QFileDialog::AnyFile);
  dialog.setOption(QFileDialog::DontConfirmOverwrite);
  dialog.setOption(QFileDialog::DontResolveSymlinks, request.keepLinks);
  if (!request.title.isEmpty()) dialog.setWindowTitle(request.title);
  QStringList filters;
  for (const FileFilter& filter : request.filters) filters += NameFilterOf(filter);
  dialog.setNameFilters(filters);
  if (request.filterIndex >= 1 && request.filterIndex <= filters.size())
    dialog.selectNameFilter(filters[request.filterIndex - 1]);
  if (!request.folder.empty()) dialog.setDirectory(DisplayText(request.folder.native()));
  if (!request.name.empty()) dialog.selectFile(DisplayText(request.name.native()));
  KeepMaskOutOfName(dialog, request);
  // The toolkit's own dialog cuts dates and sizes off; the desktop's has no such list.
  if (const auto* list = dialog.findChild<QTreeView*>(QStringLiteral("treeView")))
    for (int column = 1; column < list->header()->count(); ++column)
      list->header()->setSectionResizeMode(column, QHeaderView::ResizeToContents);
}

// The toolkit offers ranges of pages whatever it was told, keeps the selection out of sight, and proposes a file in the
// folder that the program was started in.
void Prepare(QPrintDialog& dialog, const PrinterRequest& request, Printer& printer) {
  dialog.setOption(QAbstractPrintDialog::PrintPageRange, request.pages);
  dialog.setOption(QAbstractPrintDialog::PrintCurrentPage, false);
  dialog.setOption(QAbstractPrintDialog::PrintSelection, request.selection);
  dialog.setPrintRange(request.selection ? QAbstractPrintDialog::Selection : QAbstractPrintDialog::AllPages);
  if (const auto* ranges = dialog.findChild<QWidget*>(QStringLiteral("gbPrintRange")); ranges && !request.pages)
    for (QWidget* choice : ranges->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
      if (choice->objectName() != QLatin1String("printAll") && choice->objectName() != QLatin1String("printSelection"))
        choice->hide();
  if (request.selection)
    for (auto* button : dialog.findChildren<QPushButton*>())
      if (button->text().endsWith(QLatin1String(">>"))) button->click();
  auto* file = dialog.findChild<QLineEdit*>(QStringLiteral("filename"));
  const bool other = printer.fileIsOfAnother() || printer.device().outputFileName().isEmpty();
  if (file && other && !printer.proposedFile().isEmpty()) file->setText(printer.proposedFile());
}

}  // namespace

Answer QtDialogs::ShowMessage(Form* owner, const Message& message) {
  const CommandScope scope;
  const NoHourglass pointer;
  QString text = message.text;
  text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
  QMessageBox box(WidgetOf(owner));
  box.setIcon(ToQt(message.icon));
  box.setWindowTitle(message.title.isEmpty() ? QCoreApplication::applicationName() : message.title);
  box.setTextFormat(Qt::PlainText);
  box.setText(WithPlacesToBreak(text));
  box.setStandardButtons(ToQt(message.buttons));
  if (message.noIsPreset) box.setDefaultButton(QMessageBox::No);
  switch (box.exec()) {
    case QMessageBox::Yes:
      return Answer::kYes;
    case QMessageBox::No:
      return Answer::kNo;
    case QMessageBox::Ok:
      return Answer::kOk;
    default:
      // Escape where there is no Cancel: the toolkit has pressed the only harmless button already, or nothing.
      return message.buttons == Buttons::kYesNo ? Answer::kNo
             : message.buttons == Buttons::kOk  ? Answer::kOk
                                                : Answer::kCancel;
  }
}

std::optional<files::Path> QtDialogs::PickFile(Form* owner, const FileRequest& request) {
  const CommandScope scope;
  const NoHourglass pointer;
  FileDialog dialog(WidgetOf(owner));
  Prepare(dialog, request);
  if (dialog.exec() != QDialog::Accepted || dialog.chosen().isEmpty()) return std::nullopt;
  const QString chosen = dialog.chosen();
  const files::Path proposed = request.name.empty() ? files::Path() : request.folder / request.name;
  return WithChosenExtension(PathOfChosen(chosen, proposed), dialog, request);
}

std::optional<FontChoice> QtDialogs::PickFont(Form* owner, const FontChoice& initial, CustomColors& custom) {
  FontForm form(initial, custom, WidgetOf(owner));
  if (!ShowModal(form)) return std::nullopt;
  return form.choice();
}

std::optional<int64_t> QtDialogs::PickColor(Form* owner, int64_t initial, CustomColors& custom) {
  const CommandScope scope;
  const NoHourglass pointer;
  return PickColorWith(WidgetOf(owner), ToQColor(initial), custom);
}

bool QtDialogs::PickPrinter(Form* owner, const PrinterRequest& request, Printer& printer) {
  const CommandScope scope;
  const NoHourglass pointer;
  QPrintDialog dialog(&printer.device(), WidgetOf(owner));
  Prepare(dialog, request, printer);
  const bool accepted = dialog.exec() == QDialog::Accepted;
  if (accepted) printer.AcceptFile();
  return accepted;
}

std::optional<QString> QtDialogs::AskText(Form* owner, const QString& prompt, const QString& initial) {
  InputForm form(prompt, initial, WidgetOf(owner));
  if (!ShowModal(form)) return std::nullopt;
  return form.text();
}

bool QtDialogs::ShowModal(ModalForm& form) {
  const CommandScope scope;
  const NoHourglass pointer;
  return form.exec() == QDialog::Accepted;
}

void QtDialogs::RunWork(Form* owner, const QString& text, int64_t total, const std::function<void(WorkPort&)>& work) {
  const CommandScope scope;
  RunBehindProgress(WidgetOf(owner), text, total, work);
}

}  // namespace ui
