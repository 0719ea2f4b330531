// Paths are bytes; only what is drawn is decoded.
#pragma once

#include "files/Result.h"

#include <QString>

#include <string>
#include <string_view>

namespace ui {

// For display only: bytes that are not UTF-8, control characters, line ends and direction overrides show as U+FFFD.
QString DisplayText(std::string_view bytes);

// The same, but of a long text only the beginning and the end, with an ellipsis between: about a thousand characters.
QString ShortDisplayText(std::string_view bytes);

// A name or path in a sentence: at most some eighty characters, its beginning and more of its end.
QString NameInText(std::string_view bytes);

// "&" doubled, for menus and buttons.
QString DoubleAmpersands(QString text);

// As a tooltip that shows just this text: the toolkit takes what looks like markup for markup.
QString PlainToolTip(const QString& text);

// The path behind the text that a file dialog gave. A text that shows `proposed` means `proposed`; where the text holds
// U+FFFD the folders are looked through for the one name that shows like this. Otherwise the text's own UTF-8.
files::Path PathOfChosen(const QString& chosen, const files::Path& proposed = {});

// The name that is meant by a text which was edited out of DisplayText(name). What stands before and behind the changed
// part keeps its bytes.
std::string EditedName(std::string_view name, const QString& edited);

}  // namespace ui
