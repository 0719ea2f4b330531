#include "ui/dialogs/QtDialogs.h"

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
#include <QMessageBox>
#include <QPointer>
#include <QPrintDialog>

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
  box.setText(text);
  box.setStandardButtons(ToQt(message.buttons));
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
  QFileDialog dialog(WidgetOf(owner));
  Prepare(dialog, request);
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  const QString chosen = dialog.selectedFiles().constFirst();
  const files::Path proposed = request.name.empty() ? files::Path() : request.folder / request.name;
  return PathOfChosen(chosen, proposed);
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
  dialog.setOption(QAbstractPrintDialog::PrintPageRange, request.pages);
  dialog.setOption(QAbstractPrintDialog::PrintCurrentPage, false);
  dialog.setOption(QAbstractPrintDialog::PrintSelection, request.selection);
  dialog.setPrintRange(request.selection ? QAbstractPrintDialog::Selection : QAbstractPrintDialog::AllPages);
  return dialog.exec() == QDialog::Accepted;
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
