#include "shell/help/Help.h"

#include "files/OpenFile.h"
#include "services/Links.h"
#include "services/Messages.h"
#include "shell/help/HelpTopics.h"
#include "ui/PendingEvents.h"
#include "ui/help/HelpBook.h"
#include "ui/help/HelpKey.h"
#include "ui/help/HelpPopup.h"
#include "ui/help/HelpWindow.h"

#include <QCoreApplication>

namespace shell {
namespace {

QString Tr(const char* text) {
  return QCoreApplication::translate("Help", text);
}

}  // namespace

Help::Help(services::Services& services, ApplicationFolder application)
    : services_(services), application_(std::move(application)) {}

Help::~Help() = default;

void Help::ListenForKey(std::function<void()> open) {
  key_ = std::make_unique<ui::HelpKey>(HelpTopics(), [this, open = std::move(open)](int topic) {
    services_.forms().Guarded([&] { topic == 0 ? open() : ShowHelpContext(topic); });
  });
}

files::Path Help::FindDataFile(const char* name) const {
  for (const files::Path& folder : {application_.path, application_.installedData})
    if (!folder.empty() && files::StampOf(folder / name)) return folder / name;
  return application_.path / name;
}

// Null on failure, without an error when the file is just being read. Kept until the file is another one.
std::shared_ptr<ui::HelpBook> Help::Read(const files::Path& path, std::optional<files::Error>& error) {
  const auto stamp = files::StampOf(path);
  if (book_ && stamp && path == readPath_ && stamp == readStamp_) return book_;
  if (reading_) return nullptr;  // the key was pressed again before the first reading was done
  reading_ = true;
  std::optional<files::Result<ui::ChmEntries>> read;
  std::shared_ptr<ui::HelpBook> book;
  try {
    services_.dialogs().RunWork(nullptr, Tr("Opening the help"), 0, [&](ui::WorkPort& port) {
      read = ui::ReadChm(path, [&port] { return !port.cancelled(); });
      if (*read) book = std::make_shared<ui::HelpBook>(std::move(read->value()));
    });
  } catch (...) {
    reading_ = false;
    throw;
  }
  reading_ = false;
  if (!*read) {
    error = read->error();
    return nullptr;
  }
  if (!book->Has(book->start())) {
    error = files::Error{.number = 5, .path = path, .text = "The file holds no page."};
    return nullptr;
  }
  book_ = std::move(book);
  readPath_ = path;
  readStamp_ = stamp;
  return book_;
}

void Help::Tell(const files::Path& path, const QString& text) {
  services::ShowError(services_.dialogs(), services_.forms().at(0), services::FileText(path.native(), text));
}

// One in the application folder that cannot be read does not hide the one that came with the program.
std::shared_ptr<ui::HelpBook> Help::ReadManual(std::optional<files::Error>& error) {
  const files::Path path = ManualPath(), installed = application_.installedData / path.filename();
  auto book = Read(path, error);
  if (!error || path == installed || !files::StampOf(installed)) return book;
  Tell(path, QString::fromStdString(error->text));
  error.reset();
  return Read(installed, error);
}

std::shared_ptr<ui::HelpBook> Help::ReadManualOrTell() {
  std::optional<files::Error> error;
  auto book = ReadManual(error);
  if (error) Tell(error->path, QString::fromStdString(error->text));
  return book;
}

// False when the window shows that book already.
bool Help::Open(std::shared_ptr<ui::HelpBook> book) {
  if (!window_) {
    window_ = std::make_unique<ui::HelpWindow>();
    QObject::connect(window_.get(), &ui::HelpWindow::Outside, window_.get(), [this](const QString& link) {
      services_.forms().Guarded([&] { services::FollowLink(services_, services_.forms().at(0), link); });
    });
  }
  const bool another = window_->book() != book.get();
  if (another) window_->SetBook(std::move(book));
  return another || !window_->isVisible();
}

bool Help::ShowManual() {
  const ui::CommandScope scope;
  std::optional<files::Error> error;
  const auto book = ReadManual(error);
  return book ? ShowBook(book) : !error;
}

bool Help::ShowFile(const files::Path& path) {
  const ui::CommandScope scope;
  std::optional<files::Error> error;
  const auto book = Read(path, error);
  return book ? ShowBook(book) : !error;
}

// A window that is open already stays at the page where its reader is.
bool Help::ShowBook(const std::shared_ptr<ui::HelpBook>& book) {
  if (Open(book)) {
    window_->ShowPlace(book->start());
  } else {
    window_->ShowAgain();
  }
  return true;
}

void Help::ShowHelpContext(int topic) {
  const ui::CommandScope scope;
  const auto book = ReadManualOrTell();
  if (!book) return;
  Open(book);
  window_->ShowPlace(book->TopicPlace(topic).value_or(book->start()));
}

void Help::ShowHelpPopup(const QPoint& globalPosition, int text) {
  const ui::CommandScope scope;
  const auto book = ReadManualOrTell();
  if (!book) return;
  if (const auto found = book->TextOf(text))
    return ui::ShowHelpPopup(services_.forms().at(0)->widget(), globalPosition, *found);
  Tell(readPath_, Tr("The file does not hold this text."));
}

void Help::CloseWindows() {
  window_.reset();
}

}  // namespace shell
