// Embedded objects: inserting files, opening copies of them; and what a drag of the text carries beside it.
#include "documents/EmbeddedFile.h"
#include "documents/ObjectCopies.h"
#include "documents/frmText.h"
#include "files/FileUrl.h"
#include "services/Messages.h"
#include "text/rtfsyntax/RtfPackage.h"
#include "ui/PathText.h"
#include "ui/PendingEvents.h"
#include "ui/desktop/ObjectTypes.h"
#include "ui/dialogs/InsertObjectForm.h"

#include <QMimeData>

#include <cerrno>

namespace documents {

void frmText::mnuObjInsert_Click() {
  const ui::CommandScope scope;
  if (!RichTextBox1_->MayTypeOver()) return;
  const std::vector<ui::ObjectType> types = ui::InstalledObjectTypes();
  const auto browse = [this] {
    return services_.ShowOpenDialog({.owner = this,
                                     .filter = tr("All Files|*.*"),
                                     .flags = services::kFileMustExist + services::kHideReadOnly,
                                     .title = tr("Select a file to insert")});
  };
  ui::InsertObjectForm form(types, browse, widget());
  if (!services_.dialogs().ShowModal(form) || unloaded_) return;
  if (const auto type = form.chosenType()) return InsertNewObject(types[*type]);
  if (!form.chosenFile().empty()) InsertFiles({services_.MakeAbsolute(form.chosenFile()).native()});
}

// It is opened at once, since as it is there is nothing in it.
void frmText::InsertNewObject(const ui::ObjectType& type) {
  std::string bytes = type.blank;
  if (!type.templateFile.empty()) {
    auto read = ReadEmbeddable(type.templateFile);
    if (!read)
      return services::ShowError(services_.dialogs(), this,
                                 services::ErrorText(type.templateFile.native(), read.error()));
    bytes = std::move(read.value());
  }
  const std::string rtf = ObjectRtf(type.fileName, bytes, ui::FileCard(type.fileName));
  InsertAsRichText(QByteArray::fromStdString(rtf));
  if (const auto place = RichTextBox1_->SelectedObject()) table_.copies().Open(*this, *place);
}

// All of them are one step, whatever is said of those that cannot be read.
void frmText::InsertFiles(const std::vector<std::string>& paths) {
  const ui::CommandScope scope;
  constexpr size_t kMost = 500;
  if (paths.size() > kMost)
    return services::ShowError(services_.dialogs(), this,
                               tr("%1 files are too many to be inserted at once.").arg(paths.size()));
  if (unloaded_ || !RichTextBox1_->MayTypeOver()) return;
  std::vector<std::pair<std::string, text::EmbeddedObject>> named;
  for (const std::string& path : paths) {
    std::string name = ui::DisplayText(files::Path(path).filename().native()).toStdString();
    text::EmbeddedObject card = ui::FileCard(name);
    named.emplace_back(std::move(name), std::move(card));
  }
  std::string rtf = "{\\rtf1\\ansi\\uc1 ";
  std::vector<files::Error> errors;
  bool cancelled = false, any = false;
  const auto failure = Work(tr("Inserting files into %1"), static_cast<int64_t>(paths.size()), [&](ui::WorkPort& port) {
    for (size_t i = 0; i < paths.size() && !cancelled; ++i) {
      cancelled = !port.Report(static_cast<int64_t>(i));
      const auto bytes = cancelled ? files::Result<std::string>(std::string()) : ReadEmbeddable(paths[i]);
      if (!bytes) errors.push_back(bytes.error());
      if (cancelled || !bytes) continue;
      const text::EmbeddedObject shown = ui::PictureOfFile(bytes.value(), named[i].second);
      rtf += text::rtf::PackageGroup(named[i].first, bytes.value(), shown);
      any = true;
    }
  });
  if (failure) errors = {*failure};
  if (any && !failure && !cancelled && !unloaded_) InsertAsRichText(QByteArray::fromStdString(rtf + "}"));
  if (!errors.empty() && !cancelled) ShowFileErrors(errors);
}

void frmText::ShowFileErrors(const std::vector<files::Error>& errors) {
  constexpr size_t kShown = 10;
  QString text;
  for (size_t i = 0; i < errors.size() && i < kShown; ++i) {
    if (i > 0) text += QStringLiteral("\r\n\r\n");
    text += services::ErrorText(errors[i].path.native(), errors[i]);
  }
  if (errors.size() > kShown) text += tr("\r\n\r\nand %1 more").arg(errors.size() - kShown);
  services::ShowError(services_.dialogs(), this, text);
}

void frmText::mnuRCObjOpen_Click() {
  if (const auto place = RichTextBox1_->SelectedObject()) OpenObject(*place);
}

void frmText::OpenObject(text::Units place) {
  if (!unloaded_) table_.copies().Open(*this, place);
}

// A document that has no file can be dragged as one after it has got a name.
void frmText::AddFileToDrag(QMimeData& data, bool asFile) {
  if (asFile && caption().starts_with(kUntitled)) static_cast<void>(mnuSaveFile_Click());
  if (!path().is_absolute() || !files::StampOf(path())) return;
  data.setData(QStringLiteral("text/uri-list"), QByteArray::fromStdString(files::FileUrlFromPath(path()) + "\r\n"));
}

}  // namespace documents
