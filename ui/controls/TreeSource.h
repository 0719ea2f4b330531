// What a tree view shows: whoever holds the nodes lets the view look at them here.
#pragma once

#include <cstdint>
#include <string_view>

namespace ui {

// Children of one node are a list. Lists are known by numbers that are never used again; kTopList holds the root.
using TreeList = int64_t;
constexpr TreeList kTopList = 0;
constexpr TreeList kNoList = -1;

// A node as it stands now: changes move it, so it is not kept over them.
struct TreePlace {
  TreeList list = kTopList;
  int row = 0;
  bool operator==(const TreePlace&) const = default;
};

enum class TreeImage : uint8_t { kRoot, kClosed, kOpen, kLeaf };

class TreeSource {
 public:
  virtual ~TreeSource() = default;

  virtual int Count(TreeList list) const = 0;
  virtual TreeList ListBelow(TreePlace place) const = 0;  // kNoList when it has no children
  virtual TreePlace PlaceOf(TreeList list) const = 0;     // the node whose children these are; not for kTopList
  virtual std::string_view Text(TreePlace place) const = 0;
  virtual TreeImage Image(TreePlace place) const = 0;
  virtual bool Checked(TreePlace place) const = 0;
  virtual void SetChecked(TreePlace place, bool checked) = 0;
};

}  // namespace ui
