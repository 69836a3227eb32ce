// How deep the current thread is inside groups that pass an operation on to
// their members. Every operation of a group that recurses into its members
// holds a GroupNesting for the call; below DrawGroup::kMaxNesting it is
// refused, so a deep chain of groups cannot exhaust the stack.
#pragma once

#include "draws/draw_group.h"

namespace paintdoc {

class GroupNesting {
 public:
  GroupNesting() { ++depth_; }
  ~GroupNesting() { --depth_; }
  GroupNesting(const GroupNesting&) = delete;
  GroupNesting& operator=(const GroupNesting&) = delete;

  // Whether this call lies deeper than groups may nest.
  bool tooDeep() const { return depth_ > DrawGroup::kMaxNesting; }

 private:
  static inline thread_local int depth_ = 0;
};

}  // namespace paintdoc
