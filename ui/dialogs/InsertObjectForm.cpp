#include "ui/dialogs/InsertObjectForm.h"

#include "ui/PathText.h"
#include "ui/desktop/ObjectTypes.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace ui {

InsertObjectForm::InsertObjectForm(const std::vector<ObjectType>& types, std::function<files::Path()> browse,
                                   QWidget* owner)
    : ModalForm(owner) {
  setObjectName(QStringLiteral("InsertObjectForm"));
  setWindowTitle(tr("Insert Object"));
  setLayout(new QVBoxLayout);
  AddNew(types);
  AddFromFile(std::move(browse));
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  ok_ = buttons->button(QDialogButtonBox::Ok);
  layout()->addWidget(buttons);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  (types.empty() ? fromFile_ : new_)->setChecked(true);
  connect(new_, &QRadioButton::toggled, this, &InsertObjectForm::Update);
  // Nothing is disabled: what is used says what is meant, also to a key that comes before the one before has worked.
  connect(types_, &QListWidget::currentRowChanged, this, [this] { new_->setChecked(true); });
  connect(types_, &QListWidget::itemClicked, this, [this] { new_->setChecked(true); });
  connect(file_, &QLineEdit::textChanged, this, [this] {
    fromFile_->setChecked(true);
    Update();
  });
  Update();
  if (types.empty()) {
    file_->setFocus();
  } else {
    types_->setFocus();
  }
}

void InsertObjectForm::AddNew(const std::vector<ObjectType>& types) {
  new_ = new QRadioButton(tr("Create &new:"));
  types_ = new QListWidget;
  types_->setAccessibleName(tr("Object type"));
  types_->setUniformItemSizes(true);
  for (const ObjectType& type : types) types_->addItem(tr("%1 (%2)").arg(type.name, type.application));
  types_->setCurrentRow(types.empty() ? -1 : 0);
  constexpr int kLines = 8;
  types_->setMinimumHeight(fontMetrics().lineSpacing() * kLines);
  types_->setMinimumWidth(fontMetrics().averageCharWidth() * 56);
  new_->setEnabled(!types.empty());
  connect(types_, &QListWidget::itemActivated, this, &QDialog::accept);
  layout()->addWidget(new_);
  layout()->addWidget(types_);
  if (!types.empty()) return;
  auto* none = new QLabel(tr("No application is installed that could make one."));
  none->setTextFormat(Qt::PlainText);
  layout()->addWidget(none);
}

void InsertObjectForm::AddFromFile(std::function<files::Path()> browse) {
  fromFile_ = new QRadioButton(tr("Create from &file:"));
  file_ = new QLineEdit;
  file_->setAccessibleName(tr("File"));
  browse_ = new QPushButton(tr("&Browse..."));
  browse_->setAutoDefault(false);
  connect(browse_, &QPushButton::clicked, this, [this, browse = std::move(browse)] {
    const files::Path path = browse();
    if (!path.empty()) ChooseFile(path);
  });
  auto* row = new QHBoxLayout;
  row->addWidget(file_, 1);
  row->addWidget(browse_);
  layout()->addWidget(fromFile_);
  static_cast<QVBoxLayout*>(layout())->addLayout(row);
}

void InsertObjectForm::Update() {
  ok_->setEnabled(new_->isChecked() ? types_->currentRow() >= 0 : !file_->text().isEmpty());
}

void InsertObjectForm::ChooseType(size_t index) {
  new_->setChecked(true);
  types_->setCurrentRow(static_cast<int>(index));
}

void InsertObjectForm::ChooseFile(const files::Path& path) {
  fromFile_->setChecked(true);
  browsed_ = path.native();
  file_->setText(DisplayText(browsed_));
}

std::optional<size_t> InsertObjectForm::chosenType() const {
  if (!new_->isChecked() || types_->currentRow() < 0) return std::nullopt;
  return static_cast<size_t>(types_->currentRow());
}

files::Path InsertObjectForm::chosenFile() const {
  return file_->text() == DisplayText(browsed_) ? browsed_ : file_->text().toStdString();
}

}  // namespace ui
