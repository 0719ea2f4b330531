#include "text/plain/BlockReader.h"

#include "text/Memory.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <functional>
#include <new>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace text {
namespace {

// From this size on physical memory is taken in pages of 2 MB, and several threads read.
constexpr int64_t kWorthHugePages = int64_t{8} << 20;
constexpr unsigned kMaxThreads = 4;
constexpr int64_t kProgressEvery = int64_t{16} << 20;
// Bytes of the source to a block; in front of them there is room for the unfinished tail of what is before.
constexpr size_t kMaxTail = 3;
constexpr size_t kPortion = Block::kCapacity - kMaxTail;
// Read at once, so that it is counted while it is in the processor's cache.
constexpr size_t kReadAtOnce = size_t{256} << 10;

// Copies bytes from a place of the source. Less than asked for means the end; negative is -errno.
using Source = std::function<ssize_t(char* to, size_t count, int64_t from)>;

// Threads that fill, count and commit the portions of a source in any order. Each finds its own borders: what is before
// a portion leaves at most three unfinished bytes to it, and those are read again.
class PortionReader {
 public:
  PortionReader(TextStore& store, const Source& source, int64_t size)
      : store_(store), source_(source), size_(size), portions_(static_cast<size_t>((size + kStep - 1) / kStep)) {}

  RawText Run(const Progress& progress, const std::shared_ptr<TextStore>& store);

 private:
  static constexpr int64_t kStep = kPortion;

  struct Portion {
    const char* begin = nullptr;
    size_t length = 0;
    bool whole = false;  // the source had all of it
    ScanCounts counts;
  };

  void Work(const Progress& progress) noexcept;
  int Read(size_t index);
  void Stop(int error) {
    int none = 0;
    error_.compare_exchange_strong(none, error);
  }

  TextStore& store_;
  const Source& source_;
  const int64_t size_;
  std::vector<Portion> portions_;
  std::atomic<size_t> next_ = 0;
  std::atomic<int64_t> done_ = 0;  // bytes
  std::atomic<int> error_ = 0;     // ends all threads
};

int PortionReader::Read(size_t index) {
  const int64_t from = static_cast<int64_t>(index) * kStep;
  Block* const block = store_.Lease(Block::kCapacity, size_ >= kWorthHugePages);
  char before[kMaxTail];
  const size_t looked = static_cast<size_t>(std::min<int64_t>(from, kMaxTail));
  const ssize_t got = source_(before, looked, from - static_cast<int64_t>(looked));
  if (got < 0) return static_cast<int>(-got);
  const size_t carried = UnfinishedTail({before, static_cast<size_t>(got)});
  std::memcpy(block->data(), before + static_cast<size_t>(got) - carried, carried);

  const size_t wanted = static_cast<size_t>(std::min<int64_t>(kStep, size_ - from));
  Portion& portion = portions_[index];
  portion.begin = block->data();
  portion.whole = static_cast<size_t>(got) == looked;
  for (size_t done = 0; portion.whole && done < wanted;) {
    const size_t asked = std::min(kReadAtOnce, wanted - done);
    const ssize_t count = source_(block->data() + carried + done, asked, from + static_cast<int64_t>(done));
    if (count < 0) return static_cast<int>(-count);
    done += static_cast<size_t>(count);
    portion.whole = static_cast<size_t>(count) == asked;
    const bool last = !portion.whole || (done == wanted && index + 1 == portions_.size());
    size_t ready = carried + done;
    if (!last) ready -= UnfinishedTail({block->data(), ready});
    portion.counts += block->Commit(ready - portion.length);
    portion.length = ready;
  }
  done_ += static_cast<int64_t>(portion.length);
  store_.Return(block);
  return 0;
}

void PortionReader::Work(const Progress& progress) noexcept {
  try {
    int64_t reported = 0;
    while (error_ == 0) {
      const size_t index = next_++;
      if (index >= portions_.size()) return;
      if (const int error = Read(index)) Stop(error);
      const int64_t done = done_;
      if (!progress || done - reported < kProgressEvery) continue;
      reported = done;
      if (!progress(done)) Stop(ECANCELED);
    }
  } catch (const std::bad_alloc&) {
    Stop(ENOMEM);
  }
}

RawText PortionReader::Run(const Progress& progress, const std::shared_ptr<TextStore>& store) {
  {
    std::vector<std::jthread> threads;
    const size_t useful = std::min<size_t>(portions_.size(), size_ < kWorthHugePages ? 1 : kMaxThreads);
    const size_t count = std::min<size_t>(useful, std::max(1u, std::thread::hardware_concurrency()));
    try {
      while (threads.size() + 1 < count) threads.emplace_back([this] { Work({}); });
    } catch (const std::system_error&) {
      // With fewer threads it takes longer.
    }
    Work(progress);
  }
  RawText raw;
  raw.error = error_;
  if (raw.error) return raw;
  ContentBuilder builder(store);
  for (const Portion& portion : portions_) {
    const char* begin = portion.begin;
    const char* const end = begin + portion.length;
    if (&portion == &portions_.front() && std::string_view(begin, portion.length).starts_with("\xEF\xBB\xBF")) {
      raw.utf8Mark = true;
      begin += 3;
    }
    raw.counts += portion.counts;
    builder.AppendCommitted(begin, end);
    if (!portion.whole) break;  // the file has become shorter meanwhile
  }
  raw.content = builder.Finish();
  return raw;
}

RawText ReadFrom(const Source& source, int64_t size, const Progress& progress) {
  RawText failed;
  failed.error = ENOMEM;
  if (size > FreeMemory()) return failed;
  try {
    const auto store = std::make_shared<TextStore>();
    return PortionReader(*store, source, size).Run(progress, store);
  } catch (const std::bad_alloc&) {
    return failed;
  }
}

ssize_t ReadFully(int descriptor, char* to, size_t count, int64_t from) {
  size_t done = 0;
  while (done < count) {
    const ssize_t now = pread(descriptor, to + done, count - done, from + static_cast<int64_t>(done));
    if (now < 0 && errno == EINTR) continue;
    if (now < 0) return -errno;
    if (now == 0) break;
    done += static_cast<size_t>(now);
  }
  return static_cast<ssize_t>(done);
}

// For what does not tell its size beforehand. Returns an error number.
int ReadToEnd(int descriptor, std::string& bytes) {
  const int64_t limit = FreeMemory() / 2;
  char buffer[65536];
  for (;;) {
    const ssize_t count = read(descriptor, buffer, sizeof buffer);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    if (count == 0) return 0;
    if (static_cast<int64_t>(bytes.size()) + count > limit) return ENOMEM;
    bytes.append(buffer, static_cast<size_t>(count));
  }
}

}  // namespace

RawText ReadBlocks(int descriptor, const Progress& progress) {
  struct stat status;
  const int64_t start = lseek(descriptor, 0, SEEK_CUR);
  if (start >= 0 && fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > start) {
    const Source file = [=](char* to, size_t count, int64_t from) {
      return ReadFully(descriptor, to, count, start + from);
    };
    return ReadFrom(file, status.st_size - start, progress);
  }
  std::string bytes;
  if (const int error = ReadToEnd(descriptor, bytes)) {
    RawText failed;
    failed.error = error;
    return failed;
  }
  return ReadBlocks(bytes);
}

RawText ReadBlocks(std::string_view bytes) {
  const Source memory = [bytes](char* to, size_t count, int64_t from) {
    const std::string_view part = bytes.substr(static_cast<size_t>(from), count);
    std::memcpy(to, part.data(), part.size());
    return static_cast<ssize_t>(part.size());
  };
  return ReadFrom(memory, static_cast<int64_t>(bytes.size()), {});
}

}  // namespace text
