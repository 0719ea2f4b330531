#include "ui/dialogs/ProgressForm.h"

#include "ui/Hourglass.h"

#include <QEventLoop>
#include <QGuiApplication>
#include <QLabel>
#include <QProgressDialog>
#include <QTimer>

#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>

namespace ui {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kUnnoticed(40);
constexpr milliseconds kUntilProgress(500);
constexpr milliseconds kBetweenUpdates(80);
constexpr int kSteps = 1000;
constexpr int kDetailWidth = 420;

// Ended once, seen by both threads.
class EndSignal {
 public:
  void Set() {
    const std::lock_guard lock(mutex_);
    ended_ = true;
    changed_.notify_all();
  }
  bool WaitFor(milliseconds time) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, time, [this] { return ended_; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool ended_ = false;
};

void ShowUntilEnded(QWidget* owner, const QString& text, int64_t total, WorkPort& port, EndSignal& end,
                    QEventLoop& loop) {
  QProgressDialog progress(owner);
  progress.setWindowModality(Qt::ApplicationModal);
  progress.setMinimumDuration(0);
  progress.setAutoClose(false);
  progress.setAutoReset(false);
  auto* const label = new QLabel(QString(text).replace(QLatin1String("\r\n"), QLatin1String("\n")));
  label->setTextFormat(Qt::PlainText);  // names may look like markup
  label->setWordWrap(true);
  progress.setLabel(label);
  const QString plain = label->text();
  const auto showDetail = [&] {
    const QString detail = port.detail();
    if (detail.isEmpty()) return;
    // The width stays as it is whatever the names.
    label->setMinimumWidth(kDetailWidth);
    label->setText(plain + QLatin1Char('\n') + label->fontMetrics().elidedText(detail, Qt::ElideMiddle, kDetailWidth));
  };
  showDetail();
  progress.setRange(0, total > 0 ? kSteps : 0);
  QObject::connect(&progress, &QProgressDialog::canceled, &loop, [&] {
    port.Cancel();
    // Its answer to Cancel is to hide; the work may need a moment to stop.
    progress.show();
  });
  QTimer update;
  QObject::connect(&update, &QTimer::timeout, &loop, [&] {
    showDetail();
    if (total > 0)
      progress.setValue(static_cast<int>(std::min<double>(1, double(port.done()) / double(total)) * kSteps));
  });
  update.start(kBetweenUpdates);
  progress.show();
  if (!end.WaitFor(milliseconds(0))) loop.exec();
  // The program ends, and nobody is there any more to wait.
  if (!end.WaitFor(milliseconds(0))) port.Cancel();
}

void WaitWithEvents(QWidget* owner, const QString& text, int64_t total, WorkPort& port, EndSignal& end,
                    QEventLoop& loop) {
  const Hourglass hourglass;
  QTimer untilProgress;
  untilProgress.setSingleShot(true);
  QObject::connect(&untilProgress, &QTimer::timeout, &loop, &QEventLoop::quit);
  untilProgress.start(kUntilProgress - kUnnoticed);
  loop.exec(QEventLoop::ExcludeUserInputEvents);
  if (end.WaitFor(milliseconds(0))) return;
  ShowUntilEnded(owner, text, total, port, end, loop);
}

}  // namespace

void RunBehindProgress(QWidget* owner, const QString& text, int64_t total, const std::function<void(WorkPort&)>& work) {
  WorkPort port;
  EndSignal end;
  QEventLoop loop;
  std::exception_ptr failure;
  {
    // Joined also when waiting itself fails.
    const std::jthread worker([&] {
      try {
        work(port);
      } catch (...) {
        failure = std::current_exception();
      }
      end.Set();
      QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    if (!end.WaitFor(kUnnoticed)) WaitWithEvents(owner, text, total, port, end, loop);
  }
  if (failure) std::rethrow_exception(failure);
}

}  // namespace ui
