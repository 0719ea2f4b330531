// What the editor's controller asks of the world around it: the widget in the program, a recorder in tests.
#pragma once

#include "text/Units.h"

#include <QClipboard>

#include <memory>
#include <string>

class QMimeData;

namespace ui {

constexpr double kZoomStep = 1.1;  // of a key or a notch of the wheel

class EditorHost {
 public:
  virtual ~EditorHost() = default;

  // Once at the end of each outermost operation, in this order, when there is something to tell.
  virtual void ViewChanged() = 0;       // what is shown, where the caret is, or how far the text reaches
  virtual void TextChanged() = 0;       // text or formats
  virtual void SelectionChanged() = 0;  // the selection, or the format at it

  virtual void OvertypeChanged(bool on) = 0;
  virtual void ZoomBy(double factor) = 0;
  virtual void Refused() = 0;  // protected or read-only text was in the way of the user, or nothing could be read
  virtual void ResetComposition() = 0;                     // the input method's pending text is no longer wanted
  virtual void FollowLink(const std::string& target) = 0;  // the user asks for it; UTF-8
  virtual void OpenObject(text::Units place) = 0;          // an embedded object; the user asks for it
  virtual void StartDrag() = 0;                            // of the selection; returns when it is over

  virtual const QMimeData* ClipboardData(QClipboard::Mode mode) = 0;  // null when there is none
  virtual void SetClipboardData(QClipboard::Mode mode, std::unique_ptr<QMimeData> data) = 0;
  virtual bool HasPrimarySelection() = 0;
};

}  // namespace ui
