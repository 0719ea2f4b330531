// A window with the text of one file in it, which is edited as plain text.
#pragma once

#include "panes/TextFile.h"
#include "services/Services.h"
#include "ui/editor/RichTextBox.h"
#include "ui/frame/PaneForm.h"

#include <algorithm>

namespace panes {

class TextPane : public ui::PaneForm {
  Q_OBJECT

 public:
  ui::RichTextBox& Text1() { return *Text1_; }
  // The caption without its prefix.
  files::Path path() const { return caption().substr(std::min(prefix_.size(), caption().size())); }

 protected:
  // The prefix of the caption is never translated. `firstEdges` are those of the documents where it first stands.
  TextPane(services::Services& services, std::string_view name, std::string_view prefix, Qt::Edges firstEdges);

  // The file's text, or why it cannot be had. False: the user cancelled, and the pane is as it was.
  bool Load(const files::Path& path);
  services::Services& services() { return services_; }
  // Of the file as it was read or written last; nothing: there was none.
  const std::optional<files::FileStamp>& stamp() const { return stamp_; }
  const std::optional<files::Error>& error() const { return error_; }  // what is shown in place of a file
  void TakeSaved(const files::FileStamp& stamp);

 private:
  void TakeIn(const files::Path& path, ReadText read);
  void Form_Resize() override;

  services::Services& services_;
  const std::string prefix_;
  const Qt::Edges firstEdges_;
  ui::RichTextBox* Text1_;
  std::optional<files::FileStamp> stamp_;
  std::optional<files::Error> error_;
  bool placed_ = false;
};

}  // namespace panes
