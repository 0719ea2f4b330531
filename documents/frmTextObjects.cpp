// Embedded objects: inserting files, opening copies of them; and what a drag of the text carries beside it.
#include "documents/frmText.h"
#include "documents/objects/EmbeddedFile.h"
#include "documents/objects/ObjectCopies.h"
#include "files/FileUrl.h"
#include "services/Messages.h"
#include "text/rtf/Rtf.h"
#include "text/rtfsyntax/RtfPackage.h"
#include "ui/PathText.h"
#include "ui/PendingEvents.h"
#include "ui/desktop/ObjectTypes.h"
#include "ui/dialogs/InsertObjectForm.h"

#include <QMimeData>

#include <cerrno>

namespace documents {
namespace {

// In a file every byte is two, and all of it is held as long as the document.
constexpr int64_t kMostBytesAtOnce = 256 << 20;
constexpr size_t kMostAtOnce = 500;

// By the sizes alone; files that are too large by themselves are told of one by one.
QString WhyTooMuch(const std::vector<std::string>& paths) {
  if (paths.size() > kMostAtOnce) return frmText::tr("%1 files are too many to be inserted at once.").arg(paths.size());
  int64_t bytes = 0;
  for (const std::string& path : paths) {
    const auto stamp = files::StampOf(path);
    if (stamp && stamp->size <= static_cast<int64_t>(text::rtf::kMaxPackageBytes)) bytes += stamp->size;
  }
  constexpr int64_t kMegabyte = 1 << 20;
  if (bytes <= kMostBytesAtOnce) return {};
  return frmText::tr("These files have together more than %1 MB, the most that is inserted at once.")
      .arg(kMostBytesAtOnce / kMegabyte);
}

using Store = std::shared_ptr<text::TextStore>;

text::Content FragmentOf(const std::string& rtf, const Store& store) {
  return text::rtf::ReadFragment(rtf, store).content;
}

// A file as an object of the document with that store. Any thread.
std::optional<text::Content> ObjectOf(const files::Path& path, const text::EmbeddedObject& card, const Store& store,
                                      std::vector<files::Error>& errors) {
  const auto bytes = ReadEmbeddable(path);
  if (!bytes) {
    errors.push_back(bytes.error());
    return std::nullopt;
  }
  return FragmentOf(ObjectRtf(card.name, bytes.value(), card), store);
}

}  // namespace

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
  const auto place = RichTextBox1_->InsertObjects({FragmentOf(rtf, RichTextBox1_->document().content().store())});
  if (place) table_.copies().Open(*this, *place);
}

// All of them are one step, whatever is said of those that cannot be read.
void frmText::InsertFiles(const std::vector<std::string>& paths) {
  const ui::CommandScope scope;
  if (const QString reason = WhyTooMuch(paths); !reason.isEmpty())
    return services::ShowError(services_.dialogs(), this, reason);
  if (unloaded_ || !RichTextBox1_->MayTypeOver()) return;
  std::vector<text::EmbeddedObject> cards;
  for (const std::string& path : paths) {
    const std::string name = ui::DisplayText(files::Path(path).filename().native()).toStdString();
    cards.push_back(ui::FileCard(name));
    cards.back().name = name;
  }
  std::vector<text::Content> objects;
  std::vector<files::Error> errors;
  bool cancelled = false;
  const Store store = RichTextBox1_->document().content().store();
  const auto failure = Work(tr("Inserting files into %1"), static_cast<int64_t>(paths.size()), [&](ui::WorkPort& port) {
    for (size_t i = 0; i < paths.size(); ++i) {
      cancelled = !port.Report(static_cast<int64_t>(i));
      if (cancelled) return;
      if (auto object = ObjectOf(paths[i], cards[i], store, errors)) objects.push_back(std::move(*object));
    }
    cancelled = port.cancelled();
  });
  if (failure) errors = {*failure};
  if (!objects.empty() && !failure && !cancelled && !unloaded_) RichTextBox1_->InsertObjects(objects);
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
