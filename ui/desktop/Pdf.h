// A document as a PDF file, without a window or a display.
#pragma once

#include "files/saving/AtomicSave.h"
#include "text/Document.h"
#include "text/rtf/Rtf.h"

#include <functional>
#include <string>

class QPdfWriter;

namespace ui {

// In the size and margins that the document says, else on A4 with 25 mm. `title` is UTF-8. False when the sink refused.
// Makes the toolkit's application object first where there is none yet; from the main thread only.
bool WritePdf(const text::Document& document, const text::rtf::DocumentProperties& properties, const std::string& title,
              const files::ByteSink& sink);

// The same with pages of any making: `print` says whether it has all of them, and stops where it may not go on, as then
// the sink has refused. From any one thread.
bool WritePdf(const std::string& title, const files::ByteSink& sink,
              const std::function<bool(QPdfWriter& writer, const std::function<bool()>& mayGoOn)>& print);

}  // namespace ui
