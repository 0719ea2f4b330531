// Where the bytes of a document and of all its snapshots live: blocks that are written once and never move.
#pragma once

#include "text/Content.h"

#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

namespace text {

// Sizes of the engine. The tiny variant makes every edge (block, piece, checkpoint, node) occur in short texts.
struct TreeConfig {
#ifdef QUILLMARK_TINY_TREE
  static constexpr size_t kBlockBytes = 4096;  // the smallest page
  static constexpr size_t kCheckpointBytes = 16;
  static constexpr size_t kMaxPieceBytes = 24;
  static constexpr int kFanout = 4;
#else
  static constexpr size_t kBlockBytes = size_t{4} << 20;
  static constexpr size_t kCheckpointBytes = 1024;
  static constexpr size_t kMaxPieceBytes = 65535;
  static constexpr int kFanout = 16;
#endif
};

// What a scan of bytes counted.
struct ScanCounts {
  int64_t units = 0;
  int64_t breaks = 0;
  int64_t crLfs = 0;      // CR LF pairs
  int64_t crs = 0;        // every CR, those of pairs too
  int64_t strays = 0;     // bytes that are no part of valid UTF-8
  int64_t multibyte = 0;  // valid characters of two bytes and more
  ScanCounts& operator+=(const ScanCounts& other);
};

constexpr bool IsContinuation(char c) {
  return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}
// The length of the UTF-8 character at p (1 .. 4), or 0 for a stray byte. p < end. Unicode 15, table 3-7.
int Utf8Length(const char* p, const char* end);
// How many bytes at the end of the text are an unfinished character or a CR that a following byte may complete: 0 .. 3.
size_t UnfinishedTail(std::string_view bytes);

// A mapped region aligned to its own size, so that any address in it leads to its head.
// One thread at a time writes (whoever holds the lease); others may read what they were handed before.
// Layout: the head, a checkpoint for each kCheckpointBytes of data, the data.
class Block {
 public:
  static Block* Create(bool wantHugePages);  // throws std::bad_alloc
  void Destroy();
  static Block* Of(const char* address) {
    return reinterpret_cast<Block*>(reinterpret_cast<uintptr_t>(address) & ~(TreeConfig::kBlockBytes - 1));
  }

  char* data() { return reinterpret_cast<char*>(this) + kDataOffset; }
  const char* data() const { return reinterpret_cast<const char*>(this) + kDataOffset; }
  size_t used() const { return used_.load(std::memory_order_acquire); }
  size_t space() const { return kCapacity - used(); }

  // Takes in the bytes that were written at data() + used(). They must begin and end at a character's border that no
  // later byte can change (see UnfinishedTail). Returns what was counted in them.
  ScanCounts Commit(size_t count);
  // Copies bytes whose borders are final, with a NUL in front where they would join with the byte before: a CR with a
  // LF, or a continuation byte. Returns where they stand. bytes.size() + 1 <= space().
  const char* Append(std::string_view bytes);

  // Units and breaks in [begin, end), both borders of characters in this block.
  Sums SumsOf(const char* begin, const char* end) const;
  // The first byte of the character that holds the unit `units` behind begin (a half surrogate pair: its first byte).
  // `before`, when given, becomes the sums from begin to there.
  const char* FindUnit(const char* begin, int64_t units, Sums* before = nullptr) const;
  // The first byte of the break number `breaks` (from 0) at or behind begin. It must exist.
  const char* FindBreak(const char* begin, int64_t breaks) const;
  // The border at or before p.
  const char* CharacterStart(const char* begin, const char* p) const;

  static constexpr size_t kCapacity =
      (TreeConfig::kBlockBytes - 128) * TreeConfig::kCheckpointBytes / (TreeConfig::kCheckpointBytes + 8);

 private:
  // Counts of the characters that begin before the checkpoint's offset.
  struct Checkpoint {
    uint32_t units : 30;
    uint32_t skip : 2;  // bytes at the offset that belong to the character before
    uint32_t breaks;
  };
  static constexpr size_t kCheckpoints = kCapacity / TreeConfig::kCheckpointBytes;
  static constexpr size_t kDataOffset = TreeConfig::kBlockBytes - kCapacity;

  // A border and what is counted before it.
  struct Place {
    const char* p;
    int64_t units;
    int64_t breaks;
  };
  Place Checkpointed(size_t index) const;  // 0 = the beginning
  Place PlaceOf(const char* border) const;
  size_t filled() const { return used() / TreeConfig::kCheckpointBytes; }

  // Grows last: a reader that sees it sees the bytes and the checkpoints before it.
  std::atomic<size_t> used_ = 0;
  int64_t units_ = 0;  // in data() .. data() + used_
  int64_t breaks_ = 0;
  Checkpoint checkpoint_[1];  // number 1 first; kCheckpoints of them
};

class TextStore {
 public:
  TextStore() = default;
  ~TextStore();
  TextStore(const TextStore&) = delete;
  TextStore& operator=(const TextStore&) = delete;

  FormatTable& formats() { return formats_; }

  // A block nobody else writes to, with at least `space` bytes left; give it back with Return. Safe from any thread.
  Block* Lease(size_t space, bool wantHugePages = false);
  void Return(Block* block);

  // Two bytes CR LF, shared by every piece that repairs a seam.
  const char* crLf();

 private:
  FormatTable formats_;
  std::mutex mutex_;
  std::vector<Block*> blocks_;
  std::vector<Block*> open_;  // with space left, leased to nobody
  const char* crLf_ = nullptr;
};

}  // namespace text
