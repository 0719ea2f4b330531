#include "shell/help/HelpTopics.h"

namespace shell {
namespace {

constexpr ui::HelpContext kTopics[] = {
    {"frmOptions", 4000},
    {"frmNoExtApp", 10000},
    {"frmHelp", 20010},
    {"QPrintDialog", 20102},
    {"InsertObjectForm", 20105},
    {"frmFind", 20106},
    {"ConflictForm", 20203},
    {"FailureForm", 20204},
    {"OperationReportForm", 20205},
    {"frmQuotes", 20300},
    {"frmMyPad", 20301},
    {"frmTextBlocks", 20302},
    {"CustomizeForm", 20401},
    {"QFileDialog", 20501},
    {"frmYesNoAll", 20502},
    {"InputForm", 20503},
    {"FontForm", 20504},
    {"QColorDialog", 20505},
    {"QProgressDialog", 20506},
    {"About", 20507},
    {"frmHelpCheck", 20508},
    {"QMessageBox", 20509},
};

}  // namespace

std::span<const ui::HelpContext> HelpTopics() {
  return kTopics;
}

}  // namespace shell
