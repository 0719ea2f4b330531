#include "shell/settings/SettingsDocument.h"

#include "shell/settings/SettingsEscape.h"

#include <nlohmann/json.hpp>

#include <set>

namespace shell {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kDeepest = 32;

// Watches the parser for what it would let pass.
class Watch {
 public:
  // False leaves a value out.
  bool operator()(int depth, Json::parse_event_t event, const Json& parsed) {
    using Event = Json::parse_event_t;
    if (event == Event::object_start || event == Event::array_start) {
      if (depth >= kDeepest) reason_ = "nested too deeply";
      names_.resize(static_cast<size_t>(std::min(depth, kDeepest)) + 1);
      names_.back().clear();
      return depth < kDeepest;
    }
    // A name stands one level below its object.
    if (event == Event::key && depth <= kDeepest && !names_[static_cast<size_t>(depth) - 1].insert(parsed).second)
      reason_ = "a name stands twice: " + parsed.get<std::string>();
    return true;
  }
  const std::string& reason() const { return reason_; }

 private:
  std::vector<std::set<std::string>> names_;
  std::string reason_;
};

const Json* Member(const Json* object, std::string_view name) {
  if (!object || !object->is_object()) return nullptr;
  const auto found = object->find(EscapeBytes(name));
  return found == object->end() ? nullptr : &*found;
}

const Json* At(const Json& root, SettingsDocument::Address address) {
  const Json* node = &root;
  for (const std::string& name : address) node = Member(node, name);
  return node;
}

bool IsObjectOrMissing(const Json* node) {
  return !node || node->is_object();
}

bool HasShape(const Json& root) {
  if (!root.is_object()) return false;
  const Json* const application = Member(&root, services::kApplicationName);
  return IsObjectOrMissing(application) && IsObjectOrMissing(Member(application, services::kGeneral)) &&
         IsObjectOrMissing(Member(application, services::kRecentFiles));
}

std::optional<std::string> TextOf(const Json* value) {
  if (!value) return std::nullopt;
  if (value->is_string()) return UnescapeBytes(value->get_ref<const std::string&>());
  if (value->is_boolean()) return value->get<bool>() ? "True" : "False";
  if (value->is_number()) return value->dump();
  return std::nullopt;
}

}  // namespace

struct SettingsDocument::Impl {
  Json root = Json::object();
};

SettingsDocument::SettingsDocument() : impl_(std::make_unique<Impl>()) {}
SettingsDocument::SettingsDocument(const SettingsDocument& other) : impl_(std::make_unique<Impl>(*other.impl_)) {}
SettingsDocument& SettingsDocument::operator=(const SettingsDocument& other) {
  *impl_ = *other.impl_;
  return *this;
}
SettingsDocument::SettingsDocument(SettingsDocument&&) noexcept = default;
SettingsDocument& SettingsDocument::operator=(SettingsDocument&&) noexcept = default;
SettingsDocument::~SettingsDocument() = default;

std::optional<SettingsDocument> SettingsDocument::Parse(std::string_view text, std::string& reason) {
  SettingsDocument document;
  Watch watch;
  try {
    document.impl_->root = Json::parse(text, std::ref(watch));
    reason = watch.reason();
    if (reason.empty() && !HasShape(document.impl_->root)) reason = "not an object of objects";
  } catch (const Json::exception& failure) {
    reason = failure.what();
    reason.erase(0, reason.find(' ') + 1);  // the exception's number
  }
  if (!reason.empty()) return std::nullopt;
  return document;
}

std::string SettingsDocument::Text() const {
  return impl_->root.dump(2) + "\n";
}

std::optional<std::string> SettingsDocument::Find(Address address) const {
  return TextOf(At(impl_->root, address));
}

services::SettingsStore::Pairs SettingsDocument::GetAll(Address section) const {
  services::SettingsStore::Pairs pairs;
  const Json* const object = At(impl_->root, section);
  if (!object || !object->is_object()) return pairs;
  for (const auto& [name, value] : object->items())
    if (auto text = TextOf(&value)) pairs.emplace_back(UnescapeBytes(name), std::move(*text));
  return pairs;
}

void SettingsDocument::Set(Address address, std::string_view value) {
  Json* node = &impl_->root;
  for (const std::string& name : address) {
    if (!node->is_object()) *node = Json::object();
    node = &(*node)[EscapeBytes(name)];
  }
  *node = EscapeBytes(value);
}

}  // namespace shell
