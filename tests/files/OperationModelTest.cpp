// Random operations on two volumes, compared after each with a model that is a plain map.
#include "OperationTest.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <random>

namespace files {
namespace {

using enum OperationKind;
using Choice = ConflictChoice;

// Path below the scratch folder -> "/" for a folder, "=text" or "@target".
using Tree = std::map<std::string, std::string>;

bool IsIn(const std::string& path, const std::string& folder) {
  return path == folder || path.starts_with(folder + "/");
}
std::string NameOf(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

class Model {
 public:
  Tree tree;
  std::function<Choice(const std::string& source, const std::string& target, bool mayReplace)> choose;

  void Delete(const std::string& path) {
    std::erase_if(tree, [&](const auto& item) { return IsIn(item.first, path); });
  }

  // An item of an operation.
  void Transfer(const std::string& source, const std::string& folder, bool moves) {
    if (tree.contains(source) && !IsIn(folder, source)) Put(source, folder + "/" + NameOf(source), moves);
  }

 private:
  void Put(const std::string& source, std::string target, bool moves) {
    if (moves && source == target) return;
    if (tree.contains(target)) {
      const bool folders = tree[source] == "/" && tree[target] == "/", any = tree[source] == "/" || tree[target] == "/";
      const bool mayReplace = folders ? !IsIn(source, target) : source != target && !any;
      switch (choose(source, target, mayReplace)) {
        case Choice::kReplace:
          if (!mayReplace) return;
          if (folders) return Merge(source, target, moves);
          break;
        case Choice::kKeepBoth:
          target = FreeName(target, tree[source] == "/");
          break;
        default:
          return;
      }
    }
    Tree copies;
    for (const auto& [path, what] : tree)
      if (IsIn(path, source)) copies[target + path.substr(source.size())] = what;
    if (moves) Delete(source);
    for (const auto& [path, what] : copies) tree[path] = what;
  }

  void Merge(const std::string& source, const std::string& target, bool moves) {
    std::vector<std::string> children;
    for (const auto& [path, what] : tree)
      if (path.starts_with(source + "/") && path.find('/', source.size() + 1) == std::string::npos)
        children.push_back(path);
    for (const std::string& child : children) Put(child, target + "/" + NameOf(child), moves);
    const bool left =
        std::any_of(tree.begin(), tree.end(), [&](const auto& i) { return i.first.starts_with(source + "/"); });
    if (moves && !left) tree.erase(source);
  }

  std::string FreeName(const std::string& path, bool folder) const {
    // Names here are one letter, an extension perhaps, and a number.
    const std::string name = NameOf(path), above = path.substr(0, path.size() - name.size());
    const size_t dot = folder ? std::string::npos : name.rfind('.');
    std::string stem = name.substr(0, dot), extension = dot == std::string::npos ? "" : name.substr(dot);
    int number = 2;
    if (const size_t open = stem.rfind(" ("); open != std::string::npos) {
      number = std::stoi(stem.substr(open + 2)) + 1;
      stem.resize(open);
    }
    while (tree.contains(above + stem + " (" + std::to_string(number) + ")" + extension)) ++number;
    return above + stem + " (" + std::to_string(number) + ")" + extension;
  }
};

Tree ReadTree(const Path& folder) {
  Tree tree;
  for (const auto& item : std::filesystem::recursive_directory_iterator(folder)) {
    const std::string path = item.path().lexically_relative(folder);
    tree[path] = item.is_symlink()     ? "@" + std::filesystem::read_symlink(item.path()).native()
                 : item.is_directory() ? "/"
                                       : "=" + Get(item.path());
  }
  return tree;
}

class Player {
 public:
  Player(const Path& folder, unsigned seed) : folder_(folder), random_(seed) {
    model_.tree = {{"one", "/"}, {"two", "/"}};
    user_.failure.choice = FailureChoice::kSkip;
    user_.decide = [this](const Conflict& asked) {
      return Choose(Path(asked.source.path).lexically_relative(folder_), asked.mayReplace);
    };
    model_.choose = [this](const std::string& source, const std::string&, bool mayReplace) {
      return Choose(source, mayReplace);
    };
  }

  // What was done, and how the disk differs from the model.
  std::pair<std::string, bool> Step() {
    const unsigned kind = random_() % 10;
    std::string did = model_.tree.size() < 8 || (kind < 3 && model_.tree.size() < 60) ? Create() : Operate(kind);
    return {did, ReadTree(folder_) == model_.tree};
  }

 private:
  std::string Any(bool folder) {
    std::vector<std::string> paths;
    for (const auto& [path, what] : model_.tree)
      if (folder ? what == "/" : path != "one" && path != "two") paths.push_back(path);
    return paths[random_() % paths.size()];
  }

  std::string Create() {
    static const char* const kNames[] = {"a", "b.t", "c", "d"};
    const std::string path = Any(true) + "/" + kNames[random_() % 4];
    if (model_.tree.contains(path)) return "nothing";
    const unsigned kind = random_() % 4;
    model_.tree[path] = kind < 2 ? "/" : kind == 2 ? "=" + std::to_string(random_()) : "@../c";
    MakeEntry(folder_, path + model_.tree[path]);
    return "make " + path;
  }

  std::string Operate(unsigned kind) {
    FileOperation operation{kind < 5 ? kMove : kind < 8 ? kCopy : kind < 9 ? kCopyThenDelete : kDelete, {}, {}};
    if (model_.tree.size() > 80) operation.kind = kDelete;
    const std::string target = Any(true);
    std::vector<std::string> sources;
    for (unsigned i = 0; i <= random_() % 3; ++i) sources.push_back(Any(false));
    salt_ = random_();
    std::string did = std::to_string(static_cast<int>(operation.kind)) + " to " + target + ":";
    operation.folder = folder_ / target;
    for (const std::string& source : sources) {
      operation.sources.push_back(folder_ / source);
      did += " [" + source + "]";
    }
    nested_ = sources;
    RunOperation(operation, user_);
    for (size_t i = 0; i < sources.size(); ++i) {
      const auto holds = [&](const std::string& other) { return other != sources[i] && IsIn(sources[i], other); };
      const bool again = std::find(sources.begin(), sources.begin() + static_cast<long>(i), sources[i]) !=
                         sources.begin() + static_cast<long>(i);
      if (operation.kind != kCopy && (again || std::any_of(sources.begin(), sources.end(), holds))) continue;
      if (operation.kind == kDelete)
        model_.Delete(sources[i]);
      else
        model_.Transfer(sources[i], target, operation.kind != kCopy);
    }
    return did;
  }

  // The same for both, whatever the order in which a folder is read; names are only made for whole items, as those have
  // an order.
  Choice Choose(const std::string& source, bool mayReplace) const {
    const size_t number = std::hash<std::string>()(source) ^ salt_;
    const bool item = std::find(nested_.begin(), nested_.end(), source) != nested_.end();
    if (item && number % 3 == 0) return Choice::kKeepBoth;
    return mayReplace && number % 2 ? Choice::kReplace : Choice::kSkip;
  }

  const Path folder_;
  std::mt19937 random_;
  Model model_;
  TestUser user_;
  size_t salt_ = 0;
  std::vector<std::string> nested_;
};

class OperationModelTest : public testing::TestWithParam<bool> {};

TEST_P(OperationModelTest, RandomOperations) {
  const char* const given = std::getenv("QUILLMARK_SEED");
  const unsigned first = given ? static_cast<unsigned>(std::strtoul(given, nullptr, 10)) : std::random_device()();
  for (unsigned seed = first; seed < first + 10; ++seed) {
    ScratchFolder scratch(ScratchFolder::Place::kMemory);
    MakeTree(scratch.path(), "one/ two/");
    const auto play = [&]() -> std::string {
      Player player(scratch.path(), seed);
      for (int step = 0; step < 100; ++step) {
        const auto [did, equal] = player.Step();
        if (!equal) return "seed " + std::to_string(seed) + ", step " + std::to_string(step) + ": " + did;
      }
      return "";
    };
    EXPECT_CHILD(GetParam() ? WithSmallVolume(scratch / "two", 4096, play) : InChild(play));
  }
}
INSTANTIATE_TEST_SUITE_P(, OperationModelTest, testing::Bool(),
                         [](const auto& given) { return given.param ? "TwoVolumes" : "OneVolume"; });

}  // namespace
}  // namespace files
