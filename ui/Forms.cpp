#include "ui/Forms.h"

#include "ui/PathText.h"
#include "ui/PendingEvents.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace ui {

Form::Form(Forms& forms, std::string_view name) : forms_(forms), id_(FormId{++forms.lastId_}), name_(name) {
  forms_.forms_.push_back(this);
}

Form::~Form() {
  Leave();
}

void Form::Leave() {
  if (std::exchange(listed_, false)) std::erase(forms_.forms_, this);
}

void Form::SetCaption(std::string caption) {
  caption_ = std::move(caption);
  ShowTitle(TitleOf(caption_));
}

bool Form::RequestClose() {
  if (!InsideCommand()) {
    const CommandScope scope;
    bool closed = false;
    forms_.Guarded([&] { closed = Close(); });
    return closed;
  }
  if (!closeRequested_) {
    closeRequested_ = true;
    AfterCommand(&forms_, [&forms = forms_, id = id_] {
      Form* form = forms.Find(id);
      if (!form) return;
      form->closeRequested_ = false;
      form->RequestClose();
    });
  }
  return false;
}

Form* Forms::Find(FormId id) const {
  const auto found = std::ranges::find(forms_, id, &Form::id);
  return found == forms_.end() ? nullptr : *found;
}

std::vector<FormId> Forms::InLoadOrder() const {
  std::vector<FormId> ids(forms_.size());
  std::ranges::transform(forms_, ids.begin(), &Form::id);
  return ids;
}

std::vector<FormId> Forms::Backwards() const {
  std::vector<FormId> ids = InLoadOrder();
  std::ranges::reverse(ids);
  return ids;
}

bool Forms::Guarded(const std::function<void()>& call) const {
  try {
    call();
    return true;
  } catch (const std::exception& failure) {
    Report(failure.what());
  }
  return false;
}

// Where memory ends, the message about it may fail as well.
void Forms::Report(const char* reason) const noexcept {
  try {
    if (report_) return report_(QString::fromUtf8(reason));
  } catch (const std::exception&) {
  }
  qCritical("%s", reason);
}

QString TitleOf(std::string_view caption) {
  return DisplayText(caption).replace(QLatin1String("[*]"), QLatin1String("[*][*]"));
}

}  // namespace ui
