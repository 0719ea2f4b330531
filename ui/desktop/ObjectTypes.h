// Files that can be put into a document: kinds that an installed application makes, and what stands for a file.
#pragma once

#include "files/Result.h"
#include "text/Objects.h"

#include <QString>

#include <string>
#include <string_view>
#include <vector>

namespace ui {

struct ObjectType {
  QString name;         // "Spreadsheet"
  QString application;  // that opens it by default
  std::string fileName;
  std::string blank;         // what a new one holds,
  files::Path templateFile;  // or this file's bytes
};

// The user's own templates, then what may begin as a blank file; of each only kinds with an application.
std::vector<ObjectType> InstalledObjectTypes();

// The picture of a file's icon and its name. On the user interface's thread.
text::EmbeddedObject FileCard(const std::string& name);

// What shows a file in a text: itself when it is a picture, else the card. Any thread.
text::EmbeddedObject PictureOfFile(std::string_view bytes, const text::EmbeddedObject& card);

// A name as a file may have it: no folders, no control characters, not hidden, of bounded length.
std::string PlainFileName(std::string_view name);

}  // namespace ui
