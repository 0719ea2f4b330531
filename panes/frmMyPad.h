// The window of the notes.
#pragma once

#include "panes/TextPane.h"

namespace panes {

class Notes;

class frmMyPad : public TextPane {
  Q_OBJECT

 public:
  frmMyPad(services::Services& services, Notes& notes);

  bool NotesChanged() { return Text1().document().changed(); }
  // Loads the file and shows the pad, unless the user wants to keep what it holds.
  void MyShow(const files::Path& path, ui::Keyboard keyboard);
  // Without a message when it fails. True: the file holds the text.
  bool SaveText1();

  // --- Closing, in two steps so that the end of the program can ask before anything goes
  bool Close() override;
  bool QueryUnload();  // false = the pad stays
  // False: a text that could not be saved could not be kept either.
  bool Unload();
  void RecordState();  // and size, for the settings
  // A changed text into the recovery folder, asking nothing, at any moment.
  std::optional<files::Error> KeepText();

 private:
  bool Ask(const QString& question);
  bool AskBeforeReplacing();
  bool AskEncoding(TextBytes& text);
  bool Rescue();
  void ForgetKept();

  Notes& notes_;
  QSize firstSize_;
  std::optional<files::RecoveryEntry> kept_;
  std::optional<text::Content> keptContent_;
  std::optional<text::Content> asked_;  // what the user was asked about when the pad was to close
  bool asking_ = false;
  bool rescue_ = false;  // the save that the closing asked for did not happen
};

}  // namespace panes
