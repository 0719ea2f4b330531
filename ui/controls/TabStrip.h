// Tabs, each with a frame of controls in rows.
#pragma once

#include "ui/controls/DialogControls.h"

#include <QGroupBox>
#include <QTabWidget>

#include <vector>

namespace ui {

// Tabs are named by their index from 0. Always wide enough to show all captions.
class TabStrip final : public QTabWidget {
  Q_OBJECT

 public:
  explicit TabStrip(const char* name);

  // With an empty frame of that name, which screen readers know by `key`.
  int AddTab(const char* frame, const QString& caption, const QString& key);
  // Below the rows before, from left to right; the control `wide` takes what is left of the width, -1 = none.
  void AddRow(int tab, const std::vector<Control*>& controls, int wide = -1);
};

// Options, one of which is chosen.
class OptionFrame final : public QGroupBox {
  Q_OBJECT

 public:
  OptionFrame(const char* name, const QString& caption, const std::vector<OptionButton*>& options);
};

}  // namespace ui
