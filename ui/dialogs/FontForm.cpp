#include "ui/dialogs/FontForm.h"

#include "ui/controls/ColorButton.h"
#include "ui/dialogs/ColorNumber.h"
#include "ui/dialogs/ColorPicker.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QFontDialog>
#include <QFontInfo>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QVBoxLayout>

#include <cstdlib>
#include <utility>

namespace ui {
namespace {

// The name of the family's plainest style with this emphasis, say "Book"; nothing where there is none.
QString StyleOf(const QString& family, bool bold, bool italic) {
  const int weight = bold ? QFont::Bold : QFont::Normal;
  QString best;
  std::pair<int, qsizetype> bestRank;
  for (const QString& style : QFontDatabase::styles(family)) {
    if (QFontDatabase::bold(family, style) != bold || QFontDatabase::italic(family, style) != italic) continue;
    const std::pair rank(std::abs(QFontDatabase::weight(family, style) - weight), style.size());
    if (!best.isEmpty() && rank >= bestRank) continue;
    best = style;
    bestRank = rank;
  }
  return best;
}

QFont ToQFont(const FontChoice& choice) {
  QFont font(choice.family);
  // A family that is not installed is shown as the one that stands in for it.
  if (!QFontDatabase::hasFamily(choice.family)) font.setFamily(QFontInfo(font).family());
  font.setPointSizeF(choice.points > 0 ? choice.points : 10);
  font.setBold(choice.bold);
  font.setItalic(choice.italic);
  font.setStrikeOut(choice.strikeThru);
  font.setUnderline(choice.underline);
  // Without a name the toolkit's dialog looks for "Normal" or "Regular", and takes the first style else.
  font.setStyleName(StyleOf(font.family(), choice.bold, choice.italic));
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
  shown_ = last_ = fonts_->currentFont();
  connect(fonts_, &QFontDialog::currentFontChanged, this, &FontForm::KeepEmphasis);
  fonts_->installEventFilter(this);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(fonts_);
  AddColorRow();
  if (initial.plain) HideEffects();
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  layout->addWidget(buttons);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  // Enter in the size field of the inner dialog would close that one alone.
  connect(fonts_, &QDialog::finished, this, [this](int result) { done(result); });
  SetColor(initial.color);
}

// Another family has other names for its styles; the toolkit's dialog takes the first one then, be it oblique.
void FontForm::KeepEmphasis(const QFont& now) {
  const QFont before = std::exchange(last_, now);
  if (now.family() == before.family() || (now.bold() == before.bold() && now.italic() == before.italic())) return;
  const QStringList styles = QFontDatabase::styles(now.family());
  const qsizetype row = styles.indexOf(StyleOf(now.family(), before.bold(), before.italic()));
  for (QListView* list : fonts_->findChildren<QListView*>()) {
    const QAbstractItemModel& model = *list->model();
    if (row >= 0 && model.rowCount() == styles.size() && model.index(0, 0).data() == styles[0])
      list->setCurrentIndex(model.index(static_cast<int>(row), 0));
  }
}

// The inner dialog has no button that Enter could press.
bool FontForm::eventFilter(QObject* watched, QEvent* event) {
  if (watched == fonts_ && event->type() == QEvent::KeyPress) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Return || key == Qt::Key_Enter) return accept(), true;
  }
  return ModalForm::eventFilter(watched, event);
}

void FontForm::AddColorRow() {
  auto* colors = new QWidget(this);
  auto* row = new QHBoxLayout(colors);
  row->setContentsMargins(0, 0, 0, 0);
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
  layout()->addWidget(colors);
  colors->setVisible(!initial_.plain);
  connect(automatic, &QPushButton::clicked, this, [this] { SetColor(-1); });
}

// The toolkit's dialog has them whether anybody asks for them or not; style comes second of its three lists and fields.
void FontForm::HideEffects() {
  for (auto* box : fonts_->findChildren<QGroupBox*>())
    if (!box->findChildren<QCheckBox*>().isEmpty()) box->hide();
  if (const auto lists = fonts_->findChildren<QListView*>(); lists.size() > 2) lists[1]->setEnabled(false);
  if (const auto fields = fonts_->findChildren<QLineEdit*>(); fields.size() > 2) fields[1]->setEnabled(false);
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
