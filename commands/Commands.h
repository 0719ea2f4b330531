// The main window's commands.
#pragma once

#include "autocomplete/AutoComplete.h"
#include "documents/DocumentTable.h"
#include "documents/Opening.h"
#include "foldertree/TreeFiles.h"
#include "panes/Panes.h"
#include "project/ProjectList.h"
#include "search/Find.h"
#include "services/OtherPrograms.h"
#include "services/Services.h"

namespace ui {
class ToolBar;
}

namespace commands {

constexpr int kDragDropText = 50;  // of the manual

class Commands {
 public:
  Commands(services::Services& services, documents::DocumentTable& table, documents::Opening& opening,
           project::Project& project, project::ProjectList& list, foldertree::FolderTree& tree,
           foldertree::TreeFiles& treeFiles, search::Find& find, autocomplete::AutoComplete& autoComplete,
           panes::Panes& panes, services::OtherPrograms& programs, ui::ToolBar& toolbar)
      : services_(services),
        table_(table),
        opening_(opening),
        project_(project),
        list_(list),
        tree_(tree),
        treeFiles_(treeFiles),
        find_(find),
        autoComplete_(autoComplete),
        panes_(panes),
        programs_(programs),
        Toolbar1_(toolbar) {}

  // --- File
  void mnuNewProject_Click() { project_.mnuNewProject_Click(); }
  void mnuOpen_Click() { project_.mnuOpen_Click(); }
  void mnuSaveProject_Click() { project_.mnuSaveProject_Click(); }
  void mnuSaveProjectAs_Click() { project_.mnuSaveProjectAs_Click(); }
  void mnuNew_Click();
  void mnuOpenFile_Click();
  void mnuSaveAll_Click();
  void mnuOpenAutoComplete_Click() { autoComplete_.mnuOpenAutoComplete_Click(); }
  void mnuExit_Click();
  void mnuRecentFile_Click(size_t index);  // from 0

  // --- Edit
  void mnuFind_Click() { find_.mnuFind_Click(); }
  void mnuFindNext_Click() { find_.mnuFindNext_Click(); }
  void mnuReplace_Click() { find_.mnuReplace_Click(); }

  // --- Project list
  void mnuOpenFromList_Click() { list_.mnuOpenFromList_Click(); }
  void mnuCopyListPath_Click() { list_.mnuCopyListPath_Click(); }
  void mnuAddAll_Click();
  void mnuLinkAdd_Click() { list_.mnuLinkAdd_Click(); }
  void mnuRemoveFile_Click() { list_.mnuRemoveFile_Click(); }
  void mnuSelectAll_Click() { list_.mnuSelectAll_Click(); }
  void mnuProjListClearSelected_Click() { list_.mnuProjListClearSelected_Click(); }
  void mnuListSort_Click() { list_.mnuListSort_Click(); }
  void mnuListEditPrj_Click() { list_.mnuListEditPrj_Click(); }

  // --- Folder tree
  void mnuTreeOpen_Click() { treeFiles_.mnuTreeOpen_Click(); }
  void mnuRCTreeOpen_Click() { treeFiles_.mnuRCTreeOpen_Click(); }
  void mnuTreeOpenExt_Click() { treeFiles_.mnuTreeOpenExt_Click(); }
  void mnuRCTreeOpenExt_Click() { treeFiles_.mnuRCTreeOpenExt_Click(); }
  void mnuTreeAdd2List_Click() { treeFiles_.mnuTreeAdd2List_Click(); }
  void mnuRCTreeAdd2List_Click() { treeFiles_.mnuRCTreeAdd2List_Click(); }
  void mnuTreeCopyPath_Click() { treeFiles_.mnuTreeCopyPath_Click(); }
  void mnuRCTreeCopyPath_Click() { treeFiles_.mnuRCTreeCopyPath_Click(); }
  void mnuTreeDelete_Click() { treeFiles_.mnuTreeDelete_Click(); }
  void mnuRCTreeDelete_Click() { treeFiles_.mnuRCTreeDelete_Click(); }
  void mnuTreeRename_Click() { treeFiles_.mnuTreeRename_Click(); }
  void mnuTreeCreateFolder_Click() { treeFiles_.mnuTreeCreateFolder_Click(); }
  void mnuTreeSync_Click() { tree_.mnuTreeSync_Click(); }
  void mnuTreeDirChg_Click() { tree_.mnuTreeDirChg_Click(); }
  void mnuTreeCollapseAll_Click() { tree_.mnuTreeCollapseAll_Click(); }
  void mnuTreeClearSelections_Click() { tree_.mnuTreeClearSelections_Click(); }
  void mnuTreeRefresh_Click() { tree_.mnuTreeRefresh_Click(); }
  void mnuTreeExplore_Click() { tree_.mnuTreeExplore_Click(); }

  void mnuRCDragDropHelp_Click() { services_.ShowHelpPopup(popupPosition_, kDragDropText); }
  // Where the panes' menus were opened last, on the screen.
  void SetPopupPosition(const QPoint& position) { popupPosition_ = position; }

  // --- Internet
  void mnuIntEmail_Click() { programs_.mnuIntEmail_Click(); }
  void mnuIntNews_Click() { programs_.mnuIntNews_Click(); }
  void mnuIntSnews_Click() { programs_.mnuIntSnews_Click(); }
  void mnuIntFTP_Click() { programs_.mnuIntFTP_Click(); }
  void mnuVelloraFTP_Click() { programs_.mnuVelloraFTP_Click(); }
  void mnuSAR_Click() { programs_.mnuSAR_Click(); }

  // --- Help
  void mnuUserManual_Click() { programs_.mnuUserManual_Click(); }
  void mnuHTMLTagRef_Click() { programs_.mnuHTMLTagRef_Click(); }
  void mnuAbout_Click() { programs_.mnuAbout_Click(); }

  // --- Quotes
  void mnuLoadQuotes_Click() { panes_.quotes().mnuLoadQuotes_Click(); }
  void mnuFindQuote_Click() { panes_.quotes().mnuFindQuote_Click(); }
  void mnuFindNextQuote_Click() { panes_.quotes().mnuFindNextQuote_Click(); }
  void mnuRandom_Click() { panes_.quotes().mnuRandom_Click(); }
  void mnuCopyQuote_Click() { panes_.quotes().mnuCopyQuote_Click(); }
  bool QuotesOptions() const { return quotesOptions_; }
  void SetQuotesOptions(bool enabled) { quotesOptions_ = enabled; }

  // --- Notes and text blocks
  void mnuTextBlocksOpen_Click() { panes_.textBlocks().mnuTextBlocksOpen_Click(); }
  void mnuNotesOpen_Click() { panes_.notes().mnuNotesOpen_Click(); }
  void mnuNotesSave_Click() { panes_.notes().mnuNotesSave_Click(); }
  bool NotesSave() const { return notesSave_; }
  void SetNotesSave(bool enabled) { notesSave_ = enabled; }

  // --- Options
  void mnuPrefItem_Click() { services_.mnuPrefItem_Click(); }
  void mnuAutoCompleteToggle_Click() { autoComplete_.mnuAutoCompleteToggle_Click(); }
  bool AutoCompleteOn() const { return autoComplete_.AutoCompleteOn(); }
  void mnuToolBarCustomize_Click();
  void mnuToolbarButtonRaised_Click();
  void mnuToolbarButtonFlat_Click();
  // 1 = flat buttons, 0 = raised ones.
  int toolbarStyle() const { return toolbarStyle_; }
  bool ToolbarIsFlat() const { return toolbarStyle_ == 1; }
  bool ToolbarIsRaised() const { return toolbarStyle_ != 1; }

  // --- Window
  void mnuNextPane_Click();
  void mnuMinRest_Click();
  void mnuWindowCascade_Click();
  void mnuWindowTileHoriz_Click();
  void mnuWindowTileVertical_Click();
  void mnuWindowArrange_Click();
  void mnuWindowSendBack_Click();
  void mnuCloseAll_Click();

  // By a code of the setting SaveArrange: 0 cascade, 1 rows, 2 columns.
  void Arrange(int code);
  void RefreshAllDocuments();

 private:
  void SetToolbarStyle(int style);

  services::Services& services_;
  documents::DocumentTable& table_;
  documents::Opening& opening_;
  project::Project& project_;
  project::ProjectList& list_;
  foldertree::FolderTree& tree_;
  foldertree::TreeFiles& treeFiles_;
  search::Find& find_;
  autocomplete::AutoComplete& autoComplete_;
  panes::Panes& panes_;
  services::OtherPrograms& programs_;
  ui::ToolBar& Toolbar1_;
  QPoint popupPosition_;
  int toolbarStyle_ = 1;
  bool quotesOptions_ = false, notesSave_ = false;
  ui::WindowState minRest_ = ui::WindowState::kNormal;
};

}  // namespace commands
