// The Format and Strip menus' commands that ask for something or change more than a property.
#include "documents/frmText.h"
#include "services/Messages.h"
#include "services/Numbers.h"
#include "text/plain/Encodings.h"
#include "text/plain/Strip.h"
#include "ui/PathText.h"
#include "ui/controls/OffsetTool.h"

#include <algorithm>
#include <cmath>

namespace documents {
namespace {

constexpr double kTwipsPerCentimeter = 1440 / 2.54;
constexpr int kTwipsPerPixel = 15;
constexpr int kOffsetsOfManySizes = 50;
constexpr double kMostCentimeters = 55;  // 22 inches, the widest page there is

int TwipsOf(double centimeters) {
  return static_cast<int>(std::lround(centimeters * kTwipsPerCentimeter));
}

}  // namespace

std::optional<double> frmText::AskCentimeters(const QString& prompt, double& remembered) {
  const auto answer = services_.dialogs().AskText(this, prompt, QString::number(remembered));
  if (!answer || answer->isEmpty() || unloaded_) return std::nullopt;
  const double value = std::clamp(services::LeadingNumber(*answer), -kMostCentimeters, kMostCentimeters);
  return remembered = static_cast<float>(value);
}

void frmText::AskIndent(const QString& prompt, double& remembered, void (ui::RichTextBox::*set)(int)) {
  if (const auto value = AskCentimeters(prompt, remembered)) (RichTextBox1_->*set)(TwipsOf(*value));
}

void frmText::mnuIndentLeft_Click() {
  AskIndent(tr("Input (in centimeters) the amount of left indentation desired"), LeftIndentCm_,
            &ui::RichTextBox::SetSelIndent);
}
void frmText::mnuIndentHang_Click() {
  AskIndent(tr("Input (in centimeters) the amount of hanging indentation desired"), HangingIndentCm_,
            &ui::RichTextBox::SetSelHangingIndent);
}
void frmText::mnuIndentRight_Click() {
  AskIndent(tr("Input (in centimeters) the amount of right indentation desired"), RightIndentCm_,
            &ui::RichTextBox::SetSelRightIndent);
}

void frmText::mnuBullet_Click() {
  if (RichTextBox1_->SelBullet() == true) return RichTextBox1_->SetSelBullet(false);
  const QString prompt = tr("Input (in centimeters) the amount of indentation desired for bulleted text");
  const auto value = AskCentimeters(prompt, BulletIndentCm_);
  if (!value) return;
  RichTextBox1_->SetBulletIndent(TwipsOf(*value));
  RichTextBox1_->SetSelBullet(true);
}

void frmText::mnuProtect_Click() {
  Toggle(&ui::RichTextBox::SelProtected, &ui::RichTextBox::SetSelProtected);
}

// --- Super- and subscript

void frmText::mnuSelCharOffset_Click() {
  if (!offsetTool_) {
    offsetTool_ = new ui::OffsetTool(*RichTextBox1_);
    connect(offsetTool_, &ui::OffsetTool::Changed, this, [this](int pixels) {
      services_.forms().Guarded([&] { RichTextBox1_->SetSelCharOffset(pixels * kTwipsPerPixel); });
    });
    connect(offsetTool_, &ui::OffsetTool::Dragging, this, [this](bool begins) {
      offsetDrag_.reset();
      if (begins) offsetDrag_.emplace(RichTextBox1_->document());
    });
  }
  checks_.SelCharOffset = !offsetTool_->isVisible();
  UpdateOffsetTool();
  offsetTool_->SetVisible(checks_.SelCharOffset);
}

void frmText::UpdateOffsetTool() {
  if (!checks_.SelCharOffset) return;
  const auto size = RichTextBox1_->SelFontSize();
  offsetTool_->SetRange(size ? static_cast<int>(std::lround(*size)) : kOffsetsOfManySizes);
  offsetTool_->SetValue(RichTextBox1_->SelCharOffset().value_or(0) / kTwipsPerPixel);
}

// --- Strip

void frmText::Strip(const std::function<Stripper>& strip) {
  const text::Content content = RichTextBox1_->document().content();
  const text::Range range = RichTextBox1_->SelectedRange();
  const auto total = content.SumsBefore(range.end).bytes - content.SumsBefore(range.begin).bytes;
  std::optional<std::string> stripped;
  const auto error = Work(tr("Stripping %1"), total.value(), [&](ui::WorkPort& port) {
    stripped = strip(content, range, [&port](int64_t done) { return port.Report(done); });
  });
  if (error) return services::ShowError(services_.dialogs(), this, services::ErrorText(caption(), *error));
  // What came in meanwhile is worth more than what was made of the text before.
  if (!stripped || unloaded_ || !RichTextBox1_->document().content().SameAs(content)) return;
  if (RichTextBox1_->SelectedRange() != range) return;
  if (!range.empty() && !RichTextBox1_->ReplaceSelection(*stripped)) {
    const QString text =
        tr("Error: The selection holds protected text or a part of a table's row.  Nothing was stripped.");
    return services::ShowError(services_.dialogs(), this, text);
  }
  ForceChanged();
}

void frmText::mnuStrip_Click() {
  Strip(text::JoinedLines);
}

void frmText::mnuStripBlanks_Click() {
  Strip(text::CollapsedBlanks);
}

void frmText::mnuStripASCII_Click() {
  const QString prompt = tr("Input the ASCII code of the character you want to strip.");
  const auto answer = services_.dialogs().AskText(this, prompt, StripCode_);
  if (!answer || answer->isEmpty() || unloaded_) return;
  StripCode_ = *answer;
  const double code = std::nearbyint(services::LeadingNumber(*answer));
  if (code < 0 || code > 255) {
    const QString text = tr("Error: There is no character with the code %1.  Codes go from 0 to 255.");
    services_.dialogs().ShowMessage(this, {text.arg(*answer)});
    return;
  }
  const char32_t character = text::FromWindows1252(static_cast<unsigned char>(code));
  Strip([character](const text::Content& content, text::Range range, const text::Progress& progress) {
    return text::WithoutCharacter(content, range, character, progress);
  });
}

}  // namespace documents
