// Runs out of memory where a test wants it.
#pragma once

namespace ui::test {

// While it lives, the next allocation by `new` throws std::bad_alloc; those after it succeed again.
class FailingAllocation {
 public:
  FailingAllocation();
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;
  bool happened() const;
};

}  // namespace ui::test
