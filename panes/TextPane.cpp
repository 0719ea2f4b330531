#include "panes/TextPane.h"

#include "services/Messages.h"
#include "ui/PathText.h"
#include "ui/PendingEvents.h"
#include "ui/frame/ChildArea.h"

#include <cerrno>

namespace panes {

TextPane::TextPane(services::Services& services, std::string_view name, std::string_view prefix, Qt::Edges firstEdges)
    : PaneForm(services.forms(), name, *services.forms().at(0), new ui::RichTextBox),
      services_(services),
      prefix_(prefix),
      firstEdges_(firstEdges),
      Text1_(static_cast<ui::RichTextBox*>(content())) {
  Text1_->setObjectName(QStringLiteral("Text1"));
  Text1_->SetPlainOnly(true);
  connect(Text1_, &ui::RichTextBox::ContextMenuRequested, this,
          [this](const QPoint& position) { services_.ShowPadMenu(*Text1_, position); });
  const auto tell = [this](const QString& text) {
    services_.forms().Guarded([&] { services::ShowError(services_.dialogs(), this, text); });
  };
  connect(Text1_, &ui::RichTextBox::EditFailed, this,
          [this, tell](const QString& reason) { tell(services::FileText(path().native(), reason)); });
  connect(Text1_, &ui::RichTextBox::DragRefused, this, [this, tell] {
    ui::AfterCommand(this,
                     [tell] { tell(tr("This is too much to be dragged to another program.  Copy and paste it.")); });
  });
}

bool TextPane::Load(const files::Path& path) {
  ReadText read;
  const auto stamp = files::StampOf(path);
  services_.dialogs().RunWork(
      services_.forms().at(0), tr("Opening %1").arg(ui::DisplayText(path.native())), stamp ? stamp->size : 0,
      [&](ui::WorkPort& port) { read = ReadTextFile(path, [&port](int64_t done) { return port.Report(done); }); });
  if (read.cancelled) return false;
  TakeIn(path, std::move(read));
  return true;
}

void TextPane::TakeIn(const files::Path& path, ReadText read) {
  if (read.error) {
    read.text =
        text::ReadPlainText(tr("Error: ").toStdString() + path.native() + "\r\n" + std::to_string(read.error->number));
    read.text.properties = {};
  }
  // Should the memory end in between, what stands here then is no file's text.
  stamp_.reset();
  error_ = files::SystemError(ENOMEM, path);
  Text1_->LoadPlain({});
  Text1_->SetDefaultFormat(services_.defaultFont().name, services_.defaultFont().size);
  Text1_->LoadPlain(read.text);
  SetCaption(prefix_ + path.native());
  stamp_ = read.stamp;
  error_ = std::move(read.error);
}

void TextPane::TakeSaved(const files::FileStamp& stamp) {
  stamp_ = stamp;
  error_.reset();
}

// Where it does not hide the others, at the right beside the main window as far as the screen goes; from then on it
// stands where the user puts it.
void TextPane::Form_Resize() {
  if (std::exchange(placed_, true)) return;
  QRect area = services_.documentArea().OnScreen();
  if (firstEdges_ & Qt::RightEdge) area.setRight(area.right() + Size().width());
  MoveToEdges(firstEdges_, area);
}

}  // namespace panes
