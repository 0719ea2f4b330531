// Interns fonts, formats and what they refer to; append-only, so an id stays good for the life of the store.
#pragma once

#include "text/Objects.h"

#include <array>
#include <atomic>
#include <bit>
#include <cstddef>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace text {

// A vector whose elements never move: chunk k holds kFirst << k of them. One thread at a time appends; any thread that
// was handed an index reads.
template <class T>
class StableVector {
 public:
  StableVector() = default;
  StableVector(const StableVector&) = delete;
  StableVector& operator=(const StableVector&) = delete;
  ~StableVector() {
    for (auto& chunk : chunks_) delete[] chunk.load(std::memory_order_relaxed);
  }
  size_t size() const { return size_.load(std::memory_order_acquire); }
  const T& operator[](size_t i) const {
    const size_t k = ChunkOf(i);
    return chunks_[k].load(std::memory_order_acquire)[i - Start(k)];
  }
  size_t Append(T value) {  // returns its index
    const size_t i = size_.load(std::memory_order_relaxed);
    const size_t k = ChunkOf(i);
    if (!chunks_[k].load(std::memory_order_relaxed)) chunks_[k].store(new T[kFirst << k], std::memory_order_release);
    chunks_[k].load(std::memory_order_relaxed)[i - Start(k)] = std::move(value);
    size_.store(i + 1, std::memory_order_release);
    return i;
  }

 private:
  static constexpr size_t kFirst = 16;
  static constexpr size_t Start(size_t chunk) { return (kFirst << chunk) - kFirst; }
  static constexpr size_t ChunkOf(size_t i) { return static_cast<size_t>(std::bit_width(i / kFirst + 1)) - 1; }
  std::array<std::atomic<T*>, 28> chunks_{};  // ids are 32 bits
  std::atomic<size_t> size_ = 0;
};

class FormatTable {
 public:
  FormatTable();  // index 0 of every kind is the default value

  // Equal values get equal ids. Safe from any thread.
  FontId Intern(const Font& font);
  CharFormatId Intern(const CharFormat& format);
  ParaFormatId Intern(const ParaFormat& format);
  TabsId Intern(const Tabs& tabs);  // sorted, repeats and those past kMaxTabs dropped
  ListId Intern(const List& list);
  RowId Intern(const TableRow& row);
  LinkId InternLink(const std::string& target);  // the empty one is kNone
  ObjectId Add(EmbeddedObject object);           // every object is one of its own

  const Font& operator[](FontId id) const { return fonts_[static_cast<size_t>(id)]; }
  const CharFormat& operator[](CharFormatId id) const { return chars_[static_cast<size_t>(id)]; }
  const ParaFormat& operator[](ParaFormatId id) const { return paras_[static_cast<size_t>(id)]; }
  const Tabs& operator[](TabsId id) const { return tabs_[static_cast<size_t>(id)]; }
  const List& operator[](ListId id) const { return lists_[static_cast<size_t>(id)]; }
  const TableRow& operator[](RowId id) const { return rows_[static_cast<size_t>(id)]; }
  bool hasRows() const { return rows_.size() > 1; }  // false: no paragraph is in a table
  const std::string& operator[](LinkId id) const { return links_[static_cast<size_t>(id)]; }
  const EmbeddedObject& operator[](ObjectId id) const { return objects_[static_cast<size_t>(id)]; }

 private:
  std::mutex mutex_;  // guards the appending and the maps
  StableVector<Font> fonts_;
  StableVector<CharFormat> chars_;
  StableVector<ParaFormat> paras_;
  StableVector<Tabs> tabs_;
  StableVector<List> lists_;
  StableVector<TableRow> rows_;
  StableVector<std::string> links_;
  StableVector<EmbeddedObject> objects_;
  std::unordered_multimap<size_t, uint32_t> fontIndex_, charIndex_, paraIndex_, tabsIndex_, listIndex_, rowIndex_,
      linkIndex_;
};

}  // namespace text
