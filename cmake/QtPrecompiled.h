// The Qt and standard headers that many files of the window part include. A short list on purpose: all of QtGui and
// QtWidgets makes a precompiled header of twice the size, and every compilation slower than this one does.
// It only saves time; every file includes what it uses.
#pragma once
#include <QAbstractScrollArea>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QScrollBar>
#include <QStatusBar>
#include <QString>
#include <QStringList>
#include <QTextLayout>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>
#include <QVariant>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>
