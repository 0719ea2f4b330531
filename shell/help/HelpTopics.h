// What F1 shows in a window: the manual's topic about it.
#pragma once

#include "ui/help/HelpKey.h"

#include <span>

namespace shell {

// As data/manual/topics.tsv says. The main window has none: there the key opens the manual at its beginning.
std::span<const ui::HelpContext> HelpTopics();

}  // namespace shell
