#include "panes/frmTextBlocks.h"

#include "panes/TextBlocks.h"
#include "ui/PendingEvents.h"
#include "ui/desktop/Clipboard.h"

namespace panes {
namespace {

constexpr std::string_view kPrefix = "Text blocks: ";
constexpr QSize kFirstSize = {340, 170};

}  // namespace

frmTextBlocks::frmTextBlocks(services::Services& services, TextBlocks& blocks)
    : TextPane(services, "frmTextBlocks", kPrefix, Qt::BottomEdge | Qt::LeftEdge), blocks_(blocks) {
  SetCaption("Text Blocks");
  Text1().setAccessibleName(tr("Text blocks"));
  OwnKey("Ctrl+C", [this] { CopyBlock(); });
  SetSize(kFirstSize);
}

void frmTextBlocks::MyShow(const files::Path& path, ui::Keyboard keyboard) {
  const ui::CommandScope scope;
  if (Load(path)) Show(keyboard);
}

// Where nothing is selected, nothing.
void frmTextBlocks::CopyBlock() {
  if (Text1().SelectedRange().empty()) return ui::SetClipboardText({});
  Text1().Copy();
}

bool frmTextBlocks::Close() {
  const ui::CommandScope scope;
  Unload();
  return true;
}

void frmTextBlocks::RecordState() {
  services().settings().TextBlocksState = static_cast<int>(windowState());
}

void frmTextBlocks::Unload() {
  RecordState();
  TakeDown();
  blocks_.Release();
}

}  // namespace panes
