#include "ui/controls/DriveBox.h"

#include "ui/PathText.h"
#include "ui/PendingEvents.h"

#include <QFocusEvent>
#include <QSignalBlocker>
#include <QTimer>

#include <algorithm>

namespace ui {

DriveBox::DriveBox(QWidget* parent) : QComboBox(parent) {
  setEnabled(false);
  connect(this, &QComboBox::activated, this,
          [this] { QTimer::singleShot(0, this, [this] { AfterCommand(this, [this] { Q_EMIT Chosen(); }); }); });
}

void DriveBox::SetDrives(std::vector<std::string> drives) {
  if (drives == drives_) return;
  const std::string chosen = drive();
  drives_ = std::move(drives);
  const QSignalBlocker quiet(this);
  clear();
  for (const std::string& path : drives_) addItem(ShortDisplayText(path));
  Choose(chosen);
  setEnabled(count() > 0);
}

std::string DriveBox::drive() const {
  const auto index = static_cast<size_t>(currentIndex());
  return index < drives_.size() ? drives_[index] : std::string();
}

void DriveBox::Choose(const std::string& drive) {
  const auto found = std::ranges::find(drives_, drive);
  setCurrentIndex(found == drives_.end() ? 0 : static_cast<int>(found - drives_.begin()));
}

void DriveBox::showPopup() {
  if (refresh_) refresh_();
  QComboBox::showPopup();
}

void DriveBox::focusInEvent(QFocusEvent* event) {
  if (refresh_ && event->reason() != Qt::PopupFocusReason) refresh_();
  QComboBox::focusInEvent(event);
}

}  // namespace ui
