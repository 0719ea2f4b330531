// What goes into a document of all that a drop offers.
#pragma once

#include <string>
#include <vector>

class QMimeData;

namespace ui {

// In this order: the text, a picture, every file. But what is offered in two forms goes in once: a picture beside rich
// text or a page shows that text, one beside files is a file's, an address alone beside a picture says where it is
// from, text that names the files is no text. Of a drag out of an editor the document's file is meant only when the
// user asked for it, and then alone.
struct DropParts {
  bool text = false;     // or what stands for it; for EditorController::Insert
  bool picture = false;  // besides
  std::vector<std::string> files;
};
DropParts PartsOfDrop(const QMimeData& data);

}  // namespace ui
