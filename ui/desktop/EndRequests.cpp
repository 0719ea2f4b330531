#include "ui/desktop/EndRequests.h"

#include <QEvent>
#include <QGuiApplication>
#include <QSessionManager>
#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <iterator>
#include <unistd.h>
#include <utility>

namespace ui {
namespace {

constexpr int kSignals[] = {SIGTERM, SIGHUP, SIGINT};

// A signal handler, and a handler of exit(), get no argument.
int wakeUp = -1;
std::function<void()>* keepAtExit = nullptr;

void OnSignal(int) {
  const int before = errno;
  const char sign = 0;
  // A full pipe wakes the program up just as well.
  static_cast<void>(!write(wakeUp, &sign, 1));
  errno = before;
}

// Neither the toolkit nor exit() lets an exception through.
void CallGuarded(const std::function<void()>& call) {
  try {
    call();
  } catch (const std::exception& failure) {
    qCritical("%s", failure.what());
  }
}

// The toolkit calls exit() in the middle of whatever runs when its display has gone. What is on the stack was not
// taken down, so it is all still there.
void OnExit() {
  if (auto* keep = std::exchange(keepAtExit, nullptr)) CallGuarded(*keep);
}

}  // namespace

class EndRequests::Receiver : public QObject {
 public:
  Receiver(std::function<void()> keep, std::function<void()> end) : keep_(std::move(keep)), end_(std::move(end)) {
    QObject::connect(qGuiApp, &QGuiApplication::commitDataRequest, this,
                     [this](QSessionManager&) { CallGuarded(keep_); });
    qGuiApp->installEventFilter(this);
    ListenToSignals();
    static const bool registered = std::atexit(OnExit) == 0;
    if (registered) keepAtExit = &keep_;
  }
  ~Receiver() override {
    keepAtExit = nullptr;
    if (pipe_[0] < 0) return;
    for (size_t i = 0; i < std::size(kSignals); ++i) sigaction(kSignals[i], &before_[i], nullptr);
    wakeUp = -1;
    notifier_.reset();
    for (const int end : pipe_) close(end);
  }

  // The session's last word. The toolkit's own answer would be to close the windows, which asks.
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (watched != qGuiApp || event->type() != QEvent::Quit) return false;
    End();
    return true;
  }

 private:
  void ListenToSignals() {
    if (pipe2(pipe_, O_CLOEXEC | O_NONBLOCK) != 0) return;
    wakeUp = pipe_[1];
    notifier_ = std::make_unique<QSocketNotifier>(pipe_[0], QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, this, [this] {
      char signs[64];
      while (read(pipe_[0], signs, sizeof signs) > 0) {
      }
      End();
    });
    struct sigaction action {};
    action.sa_handler = OnSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (size_t i = 0; i < std::size(kSignals); ++i) {
      sigaction(kSignals[i], nullptr, &before_[i]);
      // A program that was started with nohup goes on when its terminal closes.
      if (before_[i].sa_handler != SIG_IGN) sigaction(kSignals[i], &action, nullptr);
    }
  }
  // The end may show a message, and while it is open be asked for again.
  void End() {
    if (std::exchange(ending_, true)) return;
    CallGuarded(end_);
    ending_ = false;
  }

  std::function<void()> keep_, end_;
  int pipe_[2] = {-1, -1};
  struct sigaction before_[std::size(kSignals)] = {};
  std::unique_ptr<QSocketNotifier> notifier_;
  bool ending_ = false;
};

EndRequests::EndRequests(std::function<void()> keep, std::function<void()> end)
    : receiver_(std::make_unique<Receiver>(std::move(keep), std::move(end))) {}

EndRequests::~EndRequests() = default;

}  // namespace ui
