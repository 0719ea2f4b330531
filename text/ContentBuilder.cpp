#include "text/Tree.h"

#include <algorithm>
#include <cassert>
#include <cstring>

namespace text {
namespace {

// Shared runs shorter than this are copied together: fewer pieces make every later search and edit faster.
constexpr size_t kCopyBelow = std::min<size_t>(512, TreeConfig::kMaxPieceBytes / 2);

}  // namespace

// A run is a stretch of bytes with one pair of formats that lies, not committed yet, behind the block's used part.
struct ContentBuilder::Impl {
  explicit Impl(std::shared_ptr<TextStore> owner) : store(std::move(owner)), tree(*store) {}
  ~Impl() {
    if (block) store->Return(block);
  }

  std::string_view run() const { return {block->data() + block->used(), pending}; }
  void NextBlock(size_t space);
  void BeginRun(char first);
  void FlushRun(bool final);
  void AddPieces(const char* begin, const char* end, CharFormatId c, ParaFormatId p);

  std::shared_ptr<TextStore> store;
  TreeBuilder tree;
  Block* block = nullptr;
  size_t pending = 0;
  CharFormatId charFormat = CharFormatId::kDefault;
  ParaFormatId paraFormat = ParaFormatId::kDefault;
};

void ContentBuilder::Impl::NextBlock(size_t space) {
  if (block) store->Return(block);
  block = nullptr;
  block = store->Lease(space);
}

// Keeps the run's first byte from joining with a byte before it that belongs to something else.
void ContentBuilder::Impl::BeginRun(char first) {
  if (!block || block->space() < 8) NextBlock(8);
  if (block->used() == 0) return;
  const char last = block->data()[block->used() - 1];
  if ((last == '\r' && first == '\n') || IsContinuation(first)) block->Append({"\0", 1});
}

// Makes pieces of the run. What a later byte may complete is carried to the next block unless the run ends here.
void ContentBuilder::Impl::FlushRun(bool final) {
  if (pending == 0) return;
  const std::string_view bytes = run();
  const size_t tail = final ? 0 : UnfinishedTail(bytes);
  const char* const begin = bytes.data();
  if (pending > tail) {
    const size_t count = pending - tail;
    const ScanCounts counts = block->Commit(count);
    if (count <= TreeConfig::kMaxPieceBytes) {
      const Sums sums{Bytes(static_cast<int64_t>(count)), Units(counts.units), Breaks(counts.breaks)};
      tree.Add(MakePiece(begin, sums, charFormat, paraFormat));
    } else {
      AddPieces(begin, begin + count, charFormat, paraFormat);
    }
  }
  pending = tail;
  if (tail == 0) return;
  char carried[4];
  std::memcpy(carried, begin + (bytes.size() - tail), tail);
  NextBlock(Block::kCapacity / 2);
  std::memcpy(block->data() + block->used(), carried, tail);
}

void ContentBuilder::Impl::AddPieces(const char* begin, const char* end, CharFormatId c, ParaFormatId p) {
  while (begin < end) {
    const char* cut = end;
    if (static_cast<size_t>(end - begin) > TreeConfig::kMaxPieceBytes)
      cut = Block::Of(begin)->CharacterStart(begin, begin + TreeConfig::kMaxPieceBytes);
    tree.Add(MakePiece(begin, cut, c, p));
    begin = cut;
  }
}

ContentBuilder::ContentBuilder(std::shared_ptr<TextStore> store) : impl_(std::make_unique<Impl>(std::move(store))) {}
ContentBuilder::~ContentBuilder() = default;

void ContentBuilder::Append(std::string_view bytes, CharFormatId charFormat, ParaFormatId paraFormat) {
  Impl& impl = *impl_;
  if (impl.pending && (charFormat != impl.charFormat || paraFormat != impl.paraFormat)) impl.FlushRun(true);
  impl.charFormat = charFormat;
  impl.paraFormat = paraFormat;
  while (!bytes.empty()) {
    if (impl.pending == 0) impl.BeginRun(bytes.front());
    const size_t room = impl.block->space() - impl.pending;
    if (room == 0) {
      impl.FlushRun(false);
      continue;
    }
    const size_t count = std::min(room, bytes.size());
    std::memcpy(impl.block->data() + impl.block->used() + impl.pending, bytes.data(), count);
    impl.pending += count;
    bytes.remove_prefix(count);
  }
}

void ContentBuilder::Separate() {
  impl_->FlushRun(true);
}

void ContentBuilder::Append(const Content& content, Range range) {
  assert(content.store_ == impl_->store);
  content.ForEachPiece(range, [&](const PieceView& piece) {
    if (piece.bytes.size() < kCopyBelow) {
      // Stray bytes of two pieces stay two characters.
      if (IsContinuation(piece.bytes.front())) Separate();
      Append(piece.bytes, piece.charFormat, piece.paraFormat);
    } else {
      AppendCommitted(piece.bytes.data(), piece.bytes.data() + piece.bytes.size(), piece.charFormat, piece.paraFormat);
    }
    return true;
  });
}

void ContentBuilder::AppendCommitted(const char* begin, const char* end, CharFormatId charFormat,
                                     ParaFormatId paraFormat) {
  impl_->FlushRun(true);
  impl_->AddPieces(begin, end, charFormat, paraFormat);
}

Content ContentBuilder::Finish(ParaFormatId lastParaFormat) {
  impl_->FlushRun(true);
  Content content(impl_->store);
  content.root_ = impl_->tree.Finish();
  content.lastParaFormat_ = lastParaFormat;
  return content;
}

}  // namespace text
