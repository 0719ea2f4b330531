#include "ui/desktop/Pdf.h"

#include "text/print/Printing.h"

#include <QGuiApplication>
#include <QIODevice>
#include <QPdfWriter>

namespace ui {
namespace {

// Where the writer writes to, in order.
class SinkDevice final : public QIODevice {
 public:
  explicit SinkDevice(const files::ByteSink& sink) : sink_(sink) { open(QIODevice::WriteOnly | QIODevice::Unbuffered); }
  bool failed() const { return failed_; }
  bool isSequential() const override { return true; }

 protected:
  qint64 readData(char*, qint64) override { return -1; }
  qint64 writeData(const char* data, qint64 size) override {
    if (!failed_) failed_ = !sink_(std::string_view(data, static_cast<size_t>(size)));
    return failed_ ? -1 : size;
  }

 private:
  const files::ByteSink& sink_;
  bool failed_ = false;
};

// Fonts need an application object; this one shows nothing and asks no display.
void EnsureApplication() {
  if (QCoreApplication::instance()) return;
  static int argc = 3;
  static char name[] = "quillmark", option[] = "-platform", platform[] = "offscreen";
  static char* argv[] = {name, option, platform, nullptr};
  // What the toolkit notes of a session without a desktop is nothing that the user could mend.
  qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  static QGuiApplication application(argc, argv);
}

}  // namespace

bool WritePdf(const std::string& title, const files::ByteSink& sink,
              const std::function<bool(QPdfWriter&, const std::function<bool()>&)>& print) {
  SinkDevice device(sink);
  bool all = false;
  {
    QPdfWriter writer(&device);
    writer.setTitle(QString::fromStdString(title));
    writer.setCreator(QStringLiteral("Quillmark"));
    // A failure stops the pages; the writer itself does not tell of it.
    all = print(writer, [&device] { return !device.failed(); });
  }
  return all && !device.failed();
}

bool WritePdf(const text::Document& document, const text::rtf::DocumentProperties& properties, const std::string& title,
              const files::ByteSink& sink) {
  EnsureApplication();
  text::layout::PrintOptions options;
  options.range = document.content().all();
  options.properties = &properties;
  const std::string& font = document.formats()[properties.defaultFont].name;
  if (!font.empty()) options.defaultFont = QFont(QString::fromStdString(font));
  options.defaultTab = properties.defaultTab;
  return WritePdf(title, sink, [&](QPdfWriter& writer, const std::function<bool()>& mayGoOn) {
    SetUpPages(text::layout::ReadPageWords(properties.headerWords), true, writer);
    options.progress = [&mayGoOn](int, double) { return mayGoOn(); };
    return Print(document, options, writer) == text::layout::Printed::kAll;
  });
}

}  // namespace ui
