// What was copied and is to be deleted where it was; inside this room only.
#pragma once

#include "files/operations/FolderChain.h"
#include "files/operations/OperationJob.h"

namespace files {

// The log is written in the order of the walk. Deleting follows it and touches nothing else: what is not in it, or is
// not as it was when it was copied, stays.
class MovedLog {
 public:
  // An item of the operation begins; its other records follow.
  void Begin(size_t number, std::string path) { items_.push_back({number, std::move(path), records_.size()}); }
  void Enter(const std::string& name, const struct stat& folder) { Add(Record::kEnter, name, folder); }
  void Item(const std::string& name, const struct stat& source) { Add(Record::kItem, name, source); }
  // `keeps`: something in it was not moved.
  void Leave(bool keeps) { records_.push_back({.kind = Record::kLeave, .keeps = keeps}); }
  void EndItem();

  size_t size() const { return records_.size(); }
  // Takes the last item back: it was not moved completely.
  void DropItem();

  void DeleteSources(OperationJob& job);

 private:
  friend class LogDeletion;
  struct Record {
    enum Kind : uint8_t { kEnter, kItem, kLeave, kEnd };
    Kind kind;
    bool keeps = false;
    size_t name = 0;  // in names_
    Identity identity = {};
    int64_t size = 0;
    timespec modified = {}, changed = {};
  };
  void Add(Record::Kind kind, const std::string& name, const struct stat& status);
  static bool Unchanged(const Record& record, const struct stat& now);

  std::vector<Record> records_;
  std::string names_;  // each with NUL
  struct Moved {
    size_t number;  // in the operation
    std::string path;
    size_t begin;  // in records_
  };
  std::vector<Moved> items_;
};

}  // namespace files
