#include "ui/dialogs/FontForm.h"

#include "ui/controls/ColorButton.h"
#include "ui/dialogs/ColorNumber.h"
#include "ui/dialogs/ColorPicker.h"

#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QFontDialog>
#include <QFontInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace ui {
namespace {

QFont ToQFont(const FontChoice& choice) {
  QFont font(choice.family);
  // A family that is not installed is shown as the one that stands in for it.
  if (!QFontDatabase::hasFamily(choice.family)) font.setFamily(QFontInfo(font).family());
  font.setPointSizeF(choice.points > 0 ? choice.points : 10);
  font.setBold(choice.bold);
  font.setItalic(choice.italic);
  font.setStrikeOut(choice.strikeThru);
  font.setUnderline(choice.underline);
  return font;
}

}  // namespace

FontForm::FontForm(const FontChoice& initial, CustomColors& custom, QWidget* owner)
    : ModalForm(owner), initial_(initial), custom_(custom), fonts_(new QFontDialog(this)) {
  setObjectName(QStringLiteral("FontForm"));
  setWindowTitle(tr("Font"));
  // The toolkit's dialog has no colour; without its frame and buttons it is a part of this one.
  fonts_->setWindowFlags(Qt::Widget);
  fonts_->setOptions(QFontDialog::NoButtons | QFontDialog::DontUseNativeDialog);
  fonts_->setCurrentFont(ToQFont(initial));
  shown_ = fonts_->currentFont();

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(fonts_);
  AddColorRow();
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  layout->addWidget(buttons);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  // Enter in the size field of the inner dialog would close that one alone.
  connect(fonts_, &QDialog::finished, this, [this](int result) { done(result); });
  SetColor(initial.color);
}

void FontForm::AddColorRow() {
  auto* row = new QHBoxLayout;
  auto* label = new QLabel(tr("&Color:"), this);
  colorButton_ = new ColorButton("color", {}, ColorButton::Automatic::kText, [this] { PickColor(); });
  label->setBuddy(colorButton_);
  auto* automatic = new QPushButton(tr("&Automatic"), this);
  colorButton_->setAutoDefault(false);
  automatic->setAutoDefault(false);
  row->addWidget(label);
  row->addWidget(colorButton_);
  row->addWidget(automatic);
  row->addStretch();
  static_cast<QVBoxLayout*>(layout())->addLayout(row);
  connect(automatic, &QPushButton::clicked, this, [this] { SetColor(-1); });
}

void FontForm::SetColor(int64_t color) {
  colorButton_->SetColor(color);
  colorButton_->setText(ColorButton::NameOf(color));
}

void FontForm::PickColor() {
  const QColor now = ToQColor(colorButton_->shownColor());
  if (const auto picked = PickColorWith(this, now, custom_)) SetColor(*picked);
}

FontChoice FontForm::choice() const {
  const QFont now = fonts_->currentFont();
  FontChoice choice = initial_;
  if (now.family() != shown_.family()) choice.family = now.family();
  if (now.pointSizeF() != shown_.pointSizeF()) choice.points = now.pointSizeF();
  if (now.bold() != shown_.bold()) choice.bold = now.bold();
  if (now.italic() != shown_.italic()) choice.italic = now.italic();
  if (now.strikeOut() != shown_.strikeOut()) choice.strikeThru = now.strikeOut();
  if (now.underline() != shown_.underline()) choice.underline = now.underline();
  choice.color = colorButton_->color();
  return choice;
}

}  // namespace ui
