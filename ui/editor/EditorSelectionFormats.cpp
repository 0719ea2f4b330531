// The format properties of RichTextBox: each is a field of the selection's state and a patch of one field.
#include "ui/editor/RichTextBoxImpl.h"

#include <algorithm>
#include <cmath>

namespace ui {

using text::CharFlag;
using text::CharFormatPatch;
using text::ParaFormat;
using text::ParaFormatPatch;

namespace {

constexpr int kMostTwips = 31680;  // 22 inches

int ClampTwips(int twips) {
  return std::clamp(twips, -kMostTwips, kMostTwips);
}

CharFormatPatch FlagPatch(CharFlag flag, bool on) {
  CharFormatPatch patch;
  (on ? patch.setFlags : patch.clearFlags) = flag;
  return patch;
}

}  // namespace

// --- Characters

std::optional<bool> RichTextBox::SelBold() const {
  return impl_->controller.CharState().Flag(text::kBold);
}
void RichTextBox::SetSelBold(bool on) {
  impl_->controller.PatchChars(FlagPatch(text::kBold, on));
}

std::optional<bool> RichTextBox::SelItalic() const {
  return impl_->controller.CharState().Flag(text::kItalic);
}
void RichTextBox::SetSelItalic(bool on) {
  impl_->controller.PatchChars(FlagPatch(text::kItalic, on));
}

std::optional<bool> RichTextBox::SelUnderline() const {
  return impl_->controller.CharState().Flag(text::kUnderline);
}
void RichTextBox::SetSelUnderline(bool on) {
  impl_->controller.PatchChars(FlagPatch(text::kUnderline, on));
}

std::optional<bool> RichTextBox::SelStrikeThru() const {
  return impl_->controller.CharState().Flag(text::kStrikeThru);
}
void RichTextBox::SetSelStrikeThru(bool on) {
  impl_->controller.PatchChars(FlagPatch(text::kStrikeThru, on));
}

std::optional<bool> RichTextBox::SelProtected() const {
  return impl_->controller.CharState().Flag(text::kProtected);
}
void RichTextBox::SetSelProtected(bool on) {
  impl_->controller.PatchChars(FlagPatch(text::kProtected, on));
}

std::optional<QString> RichTextBox::SelFontName() const {
  const auto font = impl_->controller.CharState().font;
  if (!font) return std::nullopt;
  const std::string& name = impl_->document.formats()[*font].name;
  return name.empty() ? impl_->defaultFont.family() : QString::fromStdString(name);
}

void RichTextBox::SetSelFontName(const QString& name) {
  CharFormatPatch patch;
  text::Font font;
  font.name = name.toStdString();
  patch.font = impl_->document.formats().Intern(font);
  impl_->controller.PatchChars(patch);
}

std::optional<double> RichTextBox::SelFontSize() const {
  const auto halfPoints = impl_->controller.CharState().halfPoints;
  return halfPoints ? std::optional(*halfPoints / 2.0) : std::nullopt;
}

void RichTextBox::SetSelFontSize(double points) {
  CharFormatPatch patch;
  patch.halfPoints = static_cast<uint16_t>(std::lround(std::clamp(points, 0.5, 1638.0) * 2));
  impl_->controller.PatchChars(patch);
}

std::optional<int64_t> RichTextBox::SelColor() const {
  const auto color = impl_->controller.CharState().color;
  if (!color) return std::nullopt;
  return color->isAuto() ? -1 : int64_t{color->rgb};
}

void RichTextBox::SetSelColor(int64_t color) {
  CharFormatPatch patch;
  patch.color = color < 0 ? text::Color{} : text::Color{static_cast<uint32_t>(color) & 0xFFFFFFu};
  impl_->controller.PatchChars(patch);
}

std::optional<int> RichTextBox::SelCharOffset() const {
  return impl_->controller.CharState().offset;
}

void RichTextBox::SetSelCharOffset(int twips) {
  CharFormatPatch patch;
  patch.offset = ClampTwips(twips);
  impl_->controller.PatchChars(patch);
}

// --- Paragraphs

std::optional<int> RichTextBox::SelAlignment() const {
  const auto alignment = impl_->controller.ParagraphState().alignment;
  return alignment ? std::optional(static_cast<int>(*alignment)) : std::nullopt;
}

void RichTextBox::SetSelAlignment(int alignment) {
  if (alignment < 0 || alignment > static_cast<int>(text::Alignment::kJustify)) return;
  ParaFormatPatch patch;
  patch.alignment = static_cast<text::Alignment>(alignment);
  impl_->controller.PatchParagraphs(patch);
}

std::optional<int> RichTextBox::SelIndent() const {
  const auto state = impl_->controller.ParagraphState();
  if (!state.leftIndent || !state.firstIndent) return std::nullopt;
  return *state.leftIndent + *state.firstIndent;
}

void RichTextBox::SetSelIndent(int twips) {
  impl_->controller.MapParagraphs([start = ClampTwips(twips)](ParaFormat format) {
    format.leftIndent = ClampTwips(start - format.firstIndent);
    return format;
  });
}

std::optional<int> RichTextBox::SelHangingIndent() const {
  const auto first = impl_->controller.ParagraphState().firstIndent;
  return first ? std::optional(-*first) : std::nullopt;
}

void RichTextBox::SetSelHangingIndent(int twips) {
  impl_->controller.MapParagraphs([hanging = ClampTwips(twips)](ParaFormat format) {
    const int start = format.leftIndent + format.firstIndent;
    format.firstIndent = -hanging;
    format.leftIndent = ClampTwips(start + hanging);
    return format;
  });
}

std::optional<int> RichTextBox::SelRightIndent() const {
  return impl_->controller.ParagraphState().rightIndent;
}

void RichTextBox::SetSelRightIndent(int twips) {
  ParaFormatPatch patch;
  patch.rightIndent = ClampTwips(twips);
  impl_->controller.PatchParagraphs(patch);
}

std::optional<bool> RichTextBox::SelBullet() const {
  return impl_->controller.ParagraphState().bullet;
}

void RichTextBox::SetSelBullet(bool on) {
  const int indent = impl_->bulletIndent;
  impl_->controller.MapParagraphs([on, indent](ParaFormat format) {
    if (on) return WithBullet(format, indent);
    return format.bullet ? WithoutBullet(format) : format;
  });
}

int RichTextBox::BulletIndent() const {
  return impl_->bulletIndent;
}
void RichTextBox::SetBulletIndent(int twips) {
  impl_->bulletIndent = ClampTwips(twips);
}

}  // namespace ui
