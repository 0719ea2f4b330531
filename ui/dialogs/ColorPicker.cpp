#include "ui/dialogs/ColorPicker.h"

#include "ui/dialogs/ColorNumber.h"

#include <QColorDialog>

namespace ui {
namespace {

// The toolkit has one row for the whole process; it comes back as others left it.
class CustomRow {
 public:
  explicit CustomRow(const CustomColors& colors) : before_(Now()) { Set(colors); }
  ~CustomRow() { Set(before_); }
  CustomRow(const CustomRow&) = delete;
  CustomRow& operator=(const CustomRow&) = delete;

  static CustomColors Now() {
    CustomColors colors;
    for (size_t i = 0; i < colors.size(); ++i) colors[i] = FromQColor(QColorDialog::customColor(static_cast<int>(i)));
    return colors;
  }

 private:
  static void Set(const CustomColors& colors) {
    for (size_t i = 0; i < colors.size(); ++i) QColorDialog::setCustomColor(static_cast<int>(i), ToQColor(colors[i]));
  }

  const CustomColors before_;
};

}  // namespace

// The toolkit's own dialog: those of some desktops know no colours of the user's.
std::optional<int64_t> PickColorWith(QWidget* owner, const QColor& initial, CustomColors& custom) {
  const CustomRow row(custom);
  QColorDialog dialog(initial, owner);
  dialog.setOption(QColorDialog::DontUseNativeDialog);
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  custom = CustomRow::Now();
  return FromQColor(dialog.selectedColor());
}

}  // namespace ui
