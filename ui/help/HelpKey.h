// F1, wherever it is pressed in the program.
#pragma once

#include <QObject>

#include <functional>
#include <span>

class QWidget;

namespace ui {

// A window, by its object's name or as a class of the toolkit.
struct HelpContext {
  const char* name;
  int topic;
};

// Lives as long as the key has its meaning.
class HelpKey final : public QObject {
  Q_OBJECT

 public:
  // `show` gets the topic of the window, or else of the one that it belongs to; 0 where the table has neither. The
  // table outlives this.
  HelpKey(std::span<const HelpContext> table, std::function<void(int topic)> show);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  int TopicOf(const QWidget& widget) const;
  int Find(const QObject& object) const;

  std::span<const HelpContext> table_;
  std::function<void(int)> show_;
};

}  // namespace ui
