#include "text/BlockReader.h"

#include "text/Memory.h"

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <mutex>
#include <new>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace text {
namespace {

// From this size on physical memory is taken in pages of 2 MB.
constexpr int64_t kWorthHugePages = int64_t{8} << 20;
constexpr size_t kReadAtOnce = size_t{1} << 20;
constexpr int64_t kProgressEvery = int64_t{16} << 20;

// Commits what has been read into blocks and makes pieces of it.
class Scanner {
 public:
  explicit Scanner(std::shared_ptr<TextStore> store) : builder_(std::move(store)) {}

  // data() .. data() + filled has been read. `final`: nothing that is read later can change its last character.
  void Take(Block& block, size_t filled, bool final) {
    const char* const begin = block.data() + block.used();
    size_t ready = filled - block.used();
    if (!final) ready -= UnfinishedTail({begin, ready});
    if (ready == 0) return;
    counts_ += block.Commit(ready);
    size_t mark = 0;
    if (done_ == 0 && std::string_view(begin, ready).starts_with("\xEF\xBB\xBF")) {
      mark = 3;
      utf8Mark_ = true;
    }
    done_ += static_cast<int64_t>(ready);
    builder_.AppendCommitted(begin + mark, begin + ready);
  }
  int64_t done() const { return done_; }
  RawText Finish() { return {builder_.Finish(), counts_, utf8Mark_, 0}; }

 private:
  ContentBuilder builder_;
  ScanCounts counts_;
  bool utf8Mark_ = false;
  int64_t done_ = 0;
};

struct Portion {
  Block* block;
  size_t filled;
  bool full;  // the block gets nothing more
};

// The full block's unfinished last character goes to the beginning of the next one. Returns its length.
size_t CarryTail(const Block& full, Block& next) {
  const size_t tail = UnfinishedTail({full.data(), Block::kCapacity});
  std::memcpy(next.data(), full.data() + Block::kCapacity - tail, tail);
  return tail;
}

// A thread that fills blocks from a descriptor.
class ReadAhead {
 public:
  ReadAhead(int descriptor, TextStore& store) : descriptor_(descriptor), store_(store) {
    struct stat status;
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) expected_ = status.st_size;
    thread_ = std::thread([this] { Run(); });
  }
  ~ReadAhead() {
    cancelled_ = true;
    thread_.join();
  }

  // The next portion, or one without a block at the end.
  Portion Next() {
    std::unique_lock lock(mutex_);
    wake_.wait(lock, [this] { return !portions_.empty(); });
    const Portion portion = portions_.front();
    portions_.pop_front();
    return portion;
  }
  int error() const { return error_; }  // after the end

 private:
  void Run() noexcept {
    try {
      error_ = ReadAll();
    } catch (const std::bad_alloc&) {
      error_ = ENOMEM;
    }
    Publish({nullptr, 0, true});
  }
  int ReadAll();
  void Publish(Portion portion) {
    std::lock_guard lock(mutex_);
    portions_.push_back(portion);
    wake_.notify_one();
  }

  const int descriptor_;
  TextStore& store_;
  int64_t expected_ = 0;  // a hint only
  std::thread thread_;
  std::atomic<bool> cancelled_ = false;
  int error_ = 0;
  std::mutex mutex_;  // guards the portions
  std::condition_variable wake_;
  std::deque<Portion> portions_;
};

int ReadAhead::ReadAll() {
  const int64_t limit = FreeMemory();
  if (expected_ > limit) return ENOMEM;
  const auto lease = [&](int64_t total) {
    return store_.Lease(Block::kCapacity, std::max(total, expected_) >= kWorthHugePages);
  };
  Block* block = lease(0);
  size_t filled = 0, published = 0;
  for (int64_t total = 0; !cancelled_;) {
    const ssize_t count = read(descriptor_, block->data() + filled, std::min(kReadAtOnce, Block::kCapacity - filled));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) {
      const int error = count < 0 ? errno : 0;
      Publish({block, filled, true});
      return error;
    }
    filled += static_cast<size_t>(count);
    total += count;
    if (total > limit) return ENOMEM;
    if (filled == Block::kCapacity) {
      Block* const next = lease(total);
      const size_t tail = CarryTail(*block, *next);
      Publish({block, filled - tail, true});
      block = next;
      filled = tail;
      published = 0;
    } else if (filled - published >= kReadAtOnce) {
      Publish({block, filled, false});
      published = filled;
    }
  }
  return ECANCELED;
}

}  // namespace

RawText ReadBlocks(int descriptor, const Progress& progress) {
  const auto store = std::make_shared<TextStore>();
  RawText failed;
  try {
    Scanner scanner(store);
    ReadAhead reader(descriptor, *store);
    int64_t reported = 0;
    for (Portion portion = reader.Next(); portion.block; portion = reader.Next()) {
      scanner.Take(*portion.block, portion.filled, portion.full);
      if (portion.full) store->Return(portion.block);
      if (!progress || scanner.done() - reported < kProgressEvery) continue;
      reported = scanner.done();
      if (!progress(reported)) {
        failed.error = ECANCELED;
        return failed;
      }
    }
    if (reader.error() == 0) return scanner.Finish();
    failed.error = reader.error();
  } catch (const std::bad_alloc&) {
    failed.error = ENOMEM;
  } catch (const std::system_error& noThread) {
    failed.error = noThread.code().value();
  }
  return failed;
}

RawText ReadBlocks(std::string_view bytes) {
  const auto store = std::make_shared<TextStore>();
  Scanner scanner(store);
  const bool big = static_cast<int64_t>(bytes.size()) >= kWorthHugePages;
  Block* block = store->Lease(Block::kCapacity, big);
  for (size_t filled = 0;;) {
    const size_t count = std::min(bytes.size(), Block::kCapacity - filled);
    std::memcpy(block->data() + filled, bytes.data(), count);
    bytes.remove_prefix(count);
    filled += count;
    if (bytes.empty()) {
      scanner.Take(*block, filled, true);
      store->Return(block);
      return scanner.Finish();
    }
    Block* const next = store->Lease(Block::kCapacity, big);
    const size_t tail = CarryTail(*block, *next);
    scanner.Take(*block, filled - tail, true);
    store->Return(block);
    block = next;
    filled = tail;
  }
}

}  // namespace text
