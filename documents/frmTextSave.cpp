// Save and Save As.
#include "documents/frmText.h"
#include "documents/objects/ObjectCopies.h"
#include "files/AnyCase.h"
#include "files/Attributes.h"
#include "services/Messages.h"
#include "text/rtfsave/RtfSave.h"
#include "ui/PathText.h"
#include "ui/PendingEvents.h"

#include <QCoreApplication>

#include <algorithm>
#include <cerrno>
#include <set>

namespace documents {
namespace {

bool IsRtfExtension(std::string_view extension) {
  return extension.size() == 4 && IsRichName(extension);
}

// What the file is, as the reason why it cannot be replaced.
QString AttributeText(int attributes) {
  struct Row {
    int attribute;
    const char* text;
  };
  static constexpr Row kRows[] = {
      {files::kVolumeLabel, QT_TRANSLATE_NOOP("Documents", "item is a volume label")},
      {files::kDirectory, QT_TRANSLATE_NOOP("Documents", "item is a directory")},
      {files::kSystem, QT_TRANSLATE_NOOP("Documents", "item is a system file or folder")},
      {files::kHidden, QT_TRANSLATE_NOOP("Documents", "item is a hidden file or folder")},
  };
  for (const Row& row : kRows)
    if (attributes & row.attribute) return QCoreApplication::translate("Documents", row.text);
  return {};
}

QString EncodingName(text::Encoding encoding) {
  switch (encoding) {
    case text::Encoding::kUtf8:
      return QStringLiteral("UTF-8");
    case text::Encoding::kWindows1252:
      return QStringLiteral("Windows-1252");
    case text::Encoding::kUtf16Le:
    case text::Encoding::kUtf16Be:
      return QStringLiteral("UTF-16");
  }
  return {};
}

std::set<text::ObjectId> ObjectsIn(const text::Content& content) {
  std::set<text::ObjectId> objects;
  if (!content.Summarize(content.all()).anyObject) return objects;
  content.ForEachPiece(content.all(), [&](const text::PieceView& piece) {
    const text::ObjectId object = content.formats()[piece.charFormat].object;
    if (object != text::ObjectId::kNone) objects.insert(object);
    return true;
  });
  return objects;
}

QString WhyNotReplaced(const Origin& origin) {
  if (origin.stamp)
    return frmText::tr("has been changed by another program since it was opened.  Do you want to replace it?");
  switch (origin.fileHas) {
    case Origin::FileHas::kWhatWasRead:
      break;
    case Origin::FileHas::kWhatASaveLeft:
      return frmText::tr(
          "holds what a save that was cut short has left there.  Do you want to replace it by the recovered text?");
    case Origin::FileHas::kTheWholeText:
      return frmText::tr(
          "is as it was, and of the recovered text only the beginning could be kept.  Do you want to replace it?");
  }
  return frmText::tr("did not exist when it was opened, but exists now.  Do you want to replace it?");
}

enum class Fit { kAll, kNotAll, kCancelled };

// Whether the encoding can hold every character.
Fit FitOf(const text::Content& content, text::Encoding encoding, ui::WorkPort& port) {
  constexpr int64_t kPortion = 1 << 22;
  const int64_t size = content.size().value();
  for (int64_t at = 0; at < size; at += kPortion) {
    if (!port.Report(at)) return Fit::kCancelled;
    const text::Range portion{text::Units(at), text::Units(std::min(size, at + kPortion))};
    if (text::FirstUnencodable(content.Slice(content.Whole(portion)), encoding)) return Fit::kNotAll;
  }
  return Fit::kAll;
}

}  // namespace

// One save. What comes in while its questions stand open was not asked about and is not written.
struct frmText::Saving {
  int attributes = 0;
  text::Content content;
  text::TextProperties properties;
  std::shared_ptr<const std::string> spliced;  // the file that was read, with what was edited
  bool anew = false;                           // that this cannot be had, and the loss, was agreed
};

SaveOutcome frmText::mnuSaveFile_Click() {
  const ui::CommandScope scope;
  table_.copies().TakeBack(id());
  if (caption().starts_with(kUntitled)) return RenameUntitledAndSaveAs();
  const auto attributes = files::GetAttributes(path());
  if (attributes) return SaveAttributed(attributes.value());
  if (attributes.error().number == files::kFileNotFound) return SaveAttributed(0);
  return ReportSaveError(attributes.error(), 0);
}

// A document never saved gets a name first; without one it enters the project under the name it was offered.
void frmText::mnuAddFile_Click() {
  const ui::CommandScope scope;
  if (caption().starts_with(kUntitled)) static_cast<void>(RenameUntitledAndSaveAs());
  services_.AddNewDocOrLink(caption());
}

SaveOutcome frmText::RenameUntitledAndSaveAs() {
  SetCaption(std::string(kUntitled) + services_.GetFilterForPath({}).extension);
  return mnuSaveFileAs_Click();
}

SaveOutcome frmText::SaveAttributed(int attributes) {
  const text::Document& document = RichTextBox1_->document();
  Saving saving{attributes, document.content(), document.properties(), nullptr};
  // A folder or a device cannot be saved to; the attempt says so better than questions would.
  const bool replaceable = !(attributes & (files::kDirectory | files::kSystem));
  const bool readOnly = replaceable && attributes & files::kReadOnly;
  if (readOnly)
    if (const Go go = AskReadOnly(); go != Go::kOn) return Follow(go);
  if (replaceable) {
    if (const Go go = AskFormat(saving); go != Go::kOn) return Follow(go);
    // Last, since the other questions may have stood open for a while.
    if (const Go go = AskChangedOnDisk(); go != Go::kOn) return Follow(go);
  }
  if (unloaded_) return SaveOutcome::kCancelled;
  const files::Path target = path();
  if (readOnly)
    if (const auto cleared = files::SetReadOnly(target, false); !cleared)
      return ReportSaveError(cleared.error(), attributes);
  const SaveOutcome outcome = Write(saving);
  // What was not replaced stays as it was, read-only too; when that fails there has been a message already.
  if (readOnly && outcome != SaveOutcome::kSaved) static_cast<void>(files::SetReadOnly(target, true));
  return outcome;
}

SaveOutcome frmText::Follow(Go go) {
  if (go == Go::kSaveAs) return mnuSaveFileAs_Click();
  return go == Go::kFailed ? SaveOutcome::kFailed : SaveOutcome::kCancelled;
}

frmText::Go frmText::Ask(const QString& text, ui::Buttons buttons, ui::Icon icon) {
  switch (services_.dialogs().ShowMessage(this, {services::FileText(caption(), text), buttons, icon})) {
    case ui::Answer::kYes:
      return Go::kOn;
    case ui::Answer::kNo:
      return Go::kSaveAs;
    default:
      return Go::kStop;
  }
}

frmText::Go frmText::AskReadOnly() {
  const Go go =
      Ask(tr("is a Read-only file.  Its Read-only attribute must be removed before it can be replaced.  Do you "
             "want to remove it?"),
          ui::Buttons::kYesNo, ui::Icon::kInformation);
  return go == Go::kOn ? go : Go::kSaveAs;
}

frmText::Go frmText::AskChangedOnDisk() {
  const auto now = files::StampOf(path());
  if (!now || now == origin_.stamp) return Go::kOn;
  const Go go = Ask(WhyNotReplaced(origin_), ui::Buttons::kYesNoCancel, ui::Icon::kExclamation);
  if (go == Go::kOn) origin_.stamp = now;
  return go;
}

frmText::Go frmText::AskFormat(Saving& saving) {
  if (origin_.IsAsLoaded(saving.content) && (!IsRichName(caption()) || origin_.rtfBytes || origin_.notRtf))
    return Go::kOn;
  if (IsRichName(caption())) {
    if (const Go go = AskNotRtf(); go != Go::kOn) return go;
    if (!origin_.plainByChoice) return AskLoss(saving);
  }
  if (const Go go = AskObjects(saving.content); go != Go::kOn) return go;
  return AskEncoding(saving);
}

// What was agreed about is these very objects, as they are.
frmText::Go frmText::AskObjects(const text::Content& content) {
  if (std::ranges::includes(origin_.objectsGo, ObjectsIn(content))) return Go::kOn;
  const Go go = Ask(tr("contains objects, which only rich text (.rtf) can hold.  Save without them?"),
                    ui::Buttons::kYesNoCancel, ui::Icon::kExclamation);
  if (go == Go::kOn) origin_.objectsGo = ObjectsIn(content);
  return go;
}

frmText::Go frmText::AskNotRtf() {
  if (!origin_.notRtf || origin_.plainByChoice) return Go::kOn;
  const QString text =
      tr("does not hold rich text, although its name says so.  Do you want to save it as rich text?  No "
         "saves it as the plain text it is.");
  switch (Ask(text, ui::Buttons::kYesNoCancel, ui::Icon::kQuestion)) {
    case Go::kOn:
      origin_.notRtf = false;
      return Go::kOn;
    case Go::kSaveAs:
      origin_.plainByChoice = true;
      return Go::kOn;
    case Go::kStop:
    case Go::kFailed:
      break;
  }
  return Go::kStop;
}

// What was edited goes into the file that was read. Only where that cannot be done the text is written anew.
frmText::Go frmText::AskLoss(Saving& saving) {
  const text::rtf::DocumentProperties& properties = RichTextBox1_->rtfProperties();
  if (!properties.source || origin_.IsAsLoaded(saving.content)) return Go::kOn;
  text::rtf::Saved saved;
  const auto error =
      Work(tr("Saving %1"), static_cast<int64_t>(properties.source->bytes->size()), [&](ui::WorkPort& port) {
        saved = text::rtf::Save(saving.content, properties, [&port](int64_t done) { return port.Report(done); });
      });
  if (error) {
    static_cast<void>(ReportSaveError(*error, 0));
    return Go::kFailed;
  }
  if (unloaded_ || saved.as == text::rtf::SavedAs::kCancelled) return Go::kStop;
  saving.spliced = std::move(saved.bytes);
  if (saving.spliced) return Go::kOn;
  saving.anew = true;
  if (origin_.lossAgreed) return Go::kOn;
  const Go go = Ask(tr("holds more than the text that is shown, and with these changes it cannot be kept.  Do you want "
                       "to save the text alone?"),
                    ui::Buttons::kYesNoCancel, ui::Icon::kExclamation);
  origin_.lossAgreed = go == Go::kOn;
  origin_.loseElsewhere = go == Go::kSaveAs;
  return go;
}

frmText::Go frmText::AskEncoding(Saving& saving) {
  text::TextProperties& properties = saving.properties;
  if (properties.encoding == text::Encoding::kUtf8) return Go::kOn;
  Fit fit = Fit::kAll;
  const auto error = Work(tr("Saving %1"), saving.content.size().value(),
                          [&](ui::WorkPort& port) { fit = FitOf(saving.content, properties.encoding, port); });
  if (error) {
    static_cast<void>(ReportSaveError(*error, 0));
    return Go::kFailed;
  }
  if (fit != Fit::kNotAll) return fit == Fit::kAll ? Go::kOn : Go::kStop;
  const QString text = tr("contains characters that %1 cannot hold.  Save as UTF-8?");
  const Go go = Ask(text.arg(EncodingName(properties.encoding)), ui::Buttons::kYesNoCancel, ui::Icon::kExclamation);
  if (go == Go::kOn) {
    properties.encoding = text::Encoding::kUtf8;
    properties.byteOrderMark = false;
  }
  return go;
}

bool frmText::SavesAsPlain() const {
  return !IsRichName(caption()) || origin_.plainByChoice || origin_.notRtf;
}

DocumentBytes frmText::BytesToSave(const text::Content& content, const text::TextProperties& properties,
                                   bool plain) const {
  DocumentBytes bytes;
  bytes.content = content;
  bytes.plainProperties = properties;
  bytes.plainOptions.fromRichText = RichTextBox1_->isRichText();
  bytes.rtfProperties = RichTextBox1_->rtfProperties();
  if (plain) return bytes;
  bytes.form = DocumentBytes::Form::kRtf;
  if (origin_.rtfBytes && origin_.IsAsLoaded(content)) {
    bytes.form = DocumentBytes::Form::kVerbatim;
    bytes.verbatim = origin_.rtfBytes;
  }
  return bytes;
}

SaveOutcome frmText::Write(const Saving& saving) {
  DocumentBytes bytes = BytesToSave(saving.content, saving.properties, SavesAsPlain());
  if (saving.spliced) {
    bytes.form = DocumentBytes::Form::kVerbatim;
    bytes.verbatim = saving.spliced;
  }
  if (saving.anew) bytes.rtfProperties.source = nullptr;
  const files::Path target = path();
  std::optional<files::Result<files::FileStamp>> saved;
  const auto error = Work(tr("Saving %1"), bytes.content.sums().bytes.value(), [&](ui::WorkPort& port) {
    saved =
        SaveDocument(target, services_.recoveryFolder(), bytes, [&port](int64_t done) { return port.Report(done); });
  });
  if (error) return ReportSaveError(*error, saving.attributes);
  if (!*saved) return ReportSaveError(saved->error(), saving.attributes);
  Saved(saved->value(), bytes);
  return SaveOutcome::kSaved;
}

void frmText::Saved(const files::FileStamp& stamp, const DocumentBytes& written) {
  origin_.stamp = stamp;
  origin_.fileHas = Origin::FileHas::kWhatWasRead;
  rescue_ = false;
  origin_.ForgetRecovered(path(), true);
  if (unloaded_) return;
  if (written.form != DocumentBytes::Form::kPlain) table_.copies().SavedIn(id(), written.content);
  if (written.form == DocumentBytes::Form::kPlain) RichTextBox1_->document().properties() = written.plainProperties;
  // An input method may have delivered text meanwhile: that is not in the file.
  if (RichTextBox1_->document().content().SameAs(written.content)) SetUnchanged();
}

SaveOutcome frmText::ReportSaveError(const files::Error& error, int attributes) {
  if (error.systemError == ECANCELED) return SaveOutcome::kCancelled;
  QString text = services::FileText(caption(), QString::fromStdString(error.text));
  const QString reason = AttributeText(attributes);
  if (!reason.isEmpty()) text += QStringLiteral("\r\n") + reason;
  services::ShowError(services_.dialogs(), this, text);
  return SaveOutcome::kFailed;
}

void frmText::TakeName(const files::Path& chosen) {
  if (!files::SamePath(chosen, path())) origin_.LeaveFile();
  origin_.loseElsewhere = false;
  SetCaption(chosen.native());
}

SaveOutcome frmText::mnuSaveFileAs_Click() {
  const ui::CommandScope scope;
  if (caption().starts_with(kUntitledNumber)) return mnuSaveFile_Click();
  const services::PathFilter filter = services_.GetFilterForPath(caption());
  const files::Path chosen = services_.ShowSaveDialog({.owner = this,
                                                       .defaultExtension = filter.extension,
                                                       .filter = services_.documentFilter(),
                                                       .flags = services::kOverwritePrompt | services::kHideReadOnly,
                                                       .filterIndex = filter.index,
                                                       .initialFile = path()});
  if (chosen.empty() || unloaded_) return SaveOutcome::kCancelled;
  // Whether to replace this file has been asked by the dialog.
  const auto agreed = files::StampOf(chosen);
  const bool warned = IsRtfExtension(filter.extension) && !files::EndsWithAnyCase(chosen.native(), "rtf");
  if (warned) {
    const QString text =
        tr("Warning: If you change the extension from .RTF, the saved file will lose any special "
           "formatting.\r\nShall I continue?");
    const ui::Message question{services::FileText(chosen.native(), text), ui::Buttons::kYesNo, ui::Icon::kQuestion};
    if (services_.dialogs().ShowMessage(this, question) != ui::Answer::kYes) return SaveOutcome::kCancelled;
  }
  TakeName(chosen);
  if (warned) origin_.objectsGo = ObjectsIn(RichTextBox1_->document().content());
  origin_.stamp = agreed;
  origin_.fileHas = Origin::FileHas::kWhatWasRead;
  const SaveOutcome outcome = mnuSaveFile_Click();
  ui::LetPendingEventsRun();
  if (services_.settings().TreeSync) {
    services_.mnuTreeSync_Click();
    ui::LetPendingEventsRun();
    // The tree has the focus now, where Delete means files.
    if (!unloaded_) Activate();
  }
  return outcome;
}

}  // namespace documents
