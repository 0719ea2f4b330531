#include "files/operations/FileOperation.h"

#include "files/operations/CountItems.h"
#include "files/operations/DeleteTree.h"
#include "files/operations/TransferTree.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <numeric>

namespace files {

namespace {

using State = OperationOutcome::State;

std::string WithoutDoubledSeparators(const std::string& path) {
  std::string plain;
  for (const char c : path)
    if (c != '/' || !plain.ends_with('/')) plain += c;
  while (plain.size() > 1 && plain.ends_with('/')) plain.pop_back();
  return plain;
}

bool IsIn(const std::string& path, const std::string& folder) {
  return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

// For each path the number of the listed one that it lies in or is, itself mostly.
std::vector<size_t> FindOuter(const std::vector<std::string>& paths) {
  std::vector<std::string> plain;
  plain.reserve(paths.size());
  for (const std::string& path : paths) plain.push_back(WithoutDoubledSeparators(path));
  std::vector<size_t> order(paths.size()), outer(paths.size());
  std::iota(order.begin(), order.end(), size_t{0});
  // With the separator below every other byte what lies in a folder follows it at once.
  std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) {
    return std::lexicographical_compare(
        plain[a].begin(), plain[a].end(), plain[b].begin(), plain[b].end(), [](char x, char y) {
          const auto rank = [](char c) { return c == '/' ? 0 : static_cast<unsigned char>(c) + 1; };
          return rank(x) < rank(y);
        });
  });
  for (size_t i = 0, last = 0; i < order.size(); ++i) {
    if (i == 0 || !IsIn(plain[order[i]], plain[order[last]])) last = i;
    outer[order[i]] = order[last];
  }
  return outer;
}

class Operation {
 public:
  Operation(const FileOperation& operation, OperationUser& user)
      : operation_(operation), job_(user), outer_(operation.sources.size()) {
    std::iota(outer_.begin(), outer_.end(), size_t{0});
    // What goes with a folder is not asked for once more. Copies are: it was wanted here too.
    if (operation.kind != OperationKind::kCopy) outer_ = FindOuter(operation.sources);
    job_.outcome.items.resize(operation.sources.size());
  }

  OperationOutcome Run() {
    const FileSizeSignalBlock block;
    if (operation_.kind == OperationKind::kDelete) {
      CountAll({});
      EachItem([&](size_t item) { DeleteItem(job_, operation_.sources[item]); });
    } else {
      TransferAll();
    }
    auto& items = job_.outcome.items;
    for (size_t i = 0; i < items.size(); ++i) items[i] = items[outer_[i]];
    return std::move(job_.outcome);
  }

 private:
  void TransferAll() {
    int error = 0;
    Descriptor target = OpenFolder(operation_.folder, error);
    while (error) {
      if (!job_.Retry(operation_.folder, error)) return;
      target = OpenFolder(operation_.folder, error);
    }
    CountAll(IdentityOf(target.get()));
    TransferTree tree(job_, operation_.kind, target.get(), WithoutDoubledSeparators(operation_.folder));
    EachItem([&](size_t item) {
      tree.Transfer(item, operation_.sources[item]);
      if (tree.ManyToDelete()) tree.DeleteMoved();
    });
    tree.DeleteMoved();
  }

  template <class Call>
  void EachItem(const Call& call) {
    for (size_t i = 0; i < outer_.size() && job_.Continue(); ++i) {
      if (outer_[i] != i) continue;
      const Counts before = CountsNow();
      call(i);
      job_.outcome.items[i] = StateSince(before);
    }
  }

  struct Counts {
    int64_t done, skipped, failed;
  };
  Counts CountsNow() const { return {job_.outcome.done, job_.outcome.skipped, job_.outcome.failed}; }

  State StateSince(const Counts& before) const {
    const Counts now = CountsNow();
    const bool done = now.done > before.done, skipped = now.skipped > before.skipped,
               failed = now.failed > before.failed;
    if (done) return skipped || failed || job_.cancelled() ? State::kPartly : State::kDone;
    return failed ? State::kFailed : skipped ? State::kSkipped : job_.cancelled() ? State::kNotReached : State::kDone;
  }

  // Of a move only what will be copied is counted in detail.
  void CountAll(const Identity& target) {
    const bool renames = operation_.kind == OperationKind::kMove;
    for (size_t i = 0; i < outer_.size() && job_.Continue(); ++i) {
      if (outer_[i] != i) continue;
      struct stat status {};
      const FolderEntry entry = renames ? FindEntry(operation_.sources[i]) : FolderEntry{};
      if (renames && entry.folder && fstat(entry.folder.get(), &status) == 0 && status.st_dev == target.device)
        ++job_.progress.itemsTotal;
      else
        CountItem(job_, operation_.sources[i], operation_.kind != OperationKind::kDelete);
    }
  }

  const FileOperation& operation_;
  OperationJob job_;
  std::vector<size_t> outer_;
};

}  // namespace

std::vector<std::string> WithoutNested(const std::vector<std::string>& paths) {
  const std::vector<size_t> outer = FindOuter(paths);
  std::vector<std::string> kept;
  for (size_t i = 0; i < paths.size(); ++i)
    if (outer[i] == i) kept.push_back(paths[i]);
  return kept;
}

OperationOutcome RunOperation(const FileOperation& operation, OperationUser& user) {
  return Operation(operation, user).Run();
}

}  // namespace files
