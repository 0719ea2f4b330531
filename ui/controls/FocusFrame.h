// Where the keyboard is, in a list or tree that may have no current line to show it.
#pragma once

class QAbstractItemView;

namespace ui {

// A line in the highlight's colour inside the viewport's edge, while the view has the focus.
void PaintFocusFrame(QAbstractItemView& view);
// Once for each such view: scrolling moves what was painted, and the frame is not to go with it.
void KeepFocusFrameInPlace(QAbstractItemView& view);

}  // namespace ui
