#include "ui/controls/TabStrip.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace ui {

TabStrip::TabStrip(const char* name) {
  setObjectName(QLatin1String(name));
  setUsesScrollButtons(false);
}

int TabStrip::AddTab(const char* frame, const QString& caption, const QString& key) {
  auto* page = new QWidget;
  page->setObjectName(QLatin1String(frame));
  page->setAccessibleName(key);
  (new QVBoxLayout(page))->addStretch();
  return addTab(page, caption);
}

void TabStrip::AddRow(int tab, const std::vector<Control*>& controls, int wide) {
  auto* rows = static_cast<QVBoxLayout*>(widget(tab)->layout());
  auto* row = new QHBoxLayout;
  rows->insertLayout(rows->count() - 1, row);
  for (size_t i = 0; i < controls.size(); ++i) row->addWidget(controls[i], static_cast<int>(i) == wide ? 1 : 0);
}

OptionFrame::OptionFrame(const char* name, const QString& caption, const std::vector<OptionButton*>& options)
    : QGroupBox(caption) {
  setObjectName(QLatin1String(name));
  auto* column = new QVBoxLayout(this);
  for (OptionButton* option : options) column->addWidget(option);
}

}  // namespace ui
