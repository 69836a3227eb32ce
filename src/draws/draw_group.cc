#include "draws/draw_group.h"

#include <algorithm>
#include <unordered_set>

#include "archive/keyed_archiver.h"
#include "draws/group_nesting.h"
#include "archive/keyed_unarchiver.h"
#include "platform/values/log.h"
#include "platform/values/not_found.h"

namespace paintdoc {

DrawGroup::~DrawGroup() { removeAllDraws(); }

std::shared_ptr<DrawGroup> DrawGroup::withDraws(const DrawList& draws) {
  auto group = MakeDraw<DrawGroup>();
  group->aryDraws_ = draws;
  group->dropCyclicMembers();
  group->adoptMembers();
  return group;
}

void DrawGroup::encodeWithCoder(KeyedArchiver& coder) const {
  DrawBase::encodeWithCoder(coder);
  if (aryDraws_.empty()) return;
  GroupNesting nesting;
  if (nesting.tooDeep()) {
    Log("Error: groups nested too deep to archive; the deepest members are left out");
    return;
  }
  coder.encodeArrayOfObjectsForKey(aryDraws_, "Draws");
}

bool DrawGroup::initWithCoder(KeyedUnarchiver& coder) {
  if (!DrawBase::initWithCoder(coder)) return false;
  // Members of an unknown class decode as absent and are left out.
  aryDraws_ = UniqueUnheldDraws(coder.decodeArrayOfObjectsForKey<DrawBase>("Draws"));
  adoptMembers();
  return true;
}

void DrawGroup::setDraws(const DrawList& draws) {
  if (&draws == &aryDraws_) return;
  aryDraws_ = draws;
  dropCyclicMembers();
  adoptMembers();
}

bool DrawGroup::hasVisibleDraw() const {
  return std::any_of(aryDraws_.begin(), aryDraws_.end(),
                     [](const auto& member) { return member->visible(); });
}

bool DrawGroup::removeDraw(const std::shared_ptr<DrawBase>& draw) {
  auto found = std::find(aryDraws_.begin(), aryDraws_.end(), draw);
  if (!draw || found == aryDraws_.end()) return false;
  std::shared_ptr<DrawBase> keep = *found;
  aryDraws_.erase(found);
  releaseMember(*keep);
  return true;
}

void DrawGroup::removeAllDraws() {
  for (const auto& member : aryDraws_) releaseMember(*member);
  aryDraws_.clear();
}

int64_t DrawGroup::indexOfDraw(const std::shared_ptr<DrawBase>& draw) const {
  auto found = std::find(aryDraws_.begin(), aryDraws_.end(), draw);
  if (!draw || found == aryDraws_.end()) return kNotFound;
  return found - aryDraws_.begin();
}

bool DrawGroup::insertDraw(const std::shared_ptr<DrawBase>& draw, int64_t index) {
  if (!draw || indexOfDraw(draw) != kNotFound || WouldContain(*draw, *this)) return false;
  if (index < 0 || index > static_cast<int64_t>(aryDraws_.size())) return false;
  aryDraws_.insert(aryDraws_.begin() + index, draw);
  return true;
}

bool DrawGroup::replaceDraw(const std::shared_ptr<DrawBase>& old,
                            const std::shared_ptr<DrawBase>& replacement) {
  const int64_t index = indexOfDraw(old);
  if (index == kNotFound || !replacement || indexOfDraw(replacement) != kNotFound ||
      WouldContain(*replacement, *this)) {
    return false;
  }
  aryDraws_[index] = replacement;
  releaseMember(*old);
  replacement->setGroup(this);
  return true;
}

bool DrawGroup::WouldContain(const DrawBase& draw, const DrawGroup& group) {
  // Walks the draw's subtree once, each group visited once; the walk is
  // iterative so that a deep chain cannot exhaust the stack.
  std::vector<const DrawBase*> pending{&draw};
  std::unordered_set<const DrawBase*> visited;
  while (!pending.empty()) {
    const DrawBase* next = pending.back();
    pending.pop_back();
    if (next == &group) return true;
    const auto* nested = dynamic_cast<const DrawGroup*>(next);
    if (nested == nullptr || !visited.insert(nested).second) continue;
    for (const auto& member : nested->aryDraws_) pending.push_back(member.get());
  }
  return false;
}

void DrawGroup::dropCyclicMembers() {
  const auto cyclic = [this](const std::shared_ptr<DrawBase>& member) {
    return !member || WouldContain(*member, *this);
  };
  if (std::none_of(aryDraws_.begin(), aryDraws_.end(), cyclic)) return;
  Log("Error: a group can't contain itself; those members are left out");
  std::erase_if(aryDraws_, cyclic);
}

DrawList DrawGroup::UniqueUnheldDraws(DrawList draws) {
  DrawList kept;
  kept.reserve(draws.size());
  std::unordered_set<const DrawBase*> seen;
  for (auto& draw : draws) {
    if (draw->group() != nullptr || !seen.insert(draw.get()).second) {
      Log("Error: a draw appears in more than one place of the archive; only its first place is kept");
      continue;
    }
    kept.push_back(std::move(draw));
  }
  return kept;
}

void DrawGroup::adoptMembers() {
  for (const auto& member : aryDraws_) member->setGroup(this);
}

void DrawGroup::releaseMember(DrawBase& member) {
  if (member.group() == this) member.setGroup(nullptr);
}

}  // namespace paintdoc
