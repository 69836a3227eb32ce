// The layer tree of a canvas: finding draws, adding and removing them,
// reordering a selection, grouping and ungrouping, moving a selection into
// or out of a group, and the saved structure used by undo. Each operation
// leaves the composition caches right, repainting at once or dropping the
// buffer.
#include <algorithm>
#include <unordered_set>

#include "document/paint_manager.h"
#include "platform/values/not_found.h"
#include "raster/draw_image.h"

namespace paintdoc {

namespace {

// Draws compared by identity.
class DrawSet {
 public:
  explicit DrawSet(const DrawList& draws) {
    for (const auto& draw : draws) {
      if (draw) members_.insert(draw.get());
    }
  }
  bool contains(const std::shared_ptr<DrawBase>& draw) const {
    return draw && members_.count(draw.get()) != 0;
  }

 private:
  std::unordered_set<const DrawBase*> members_;
};

std::shared_ptr<DrawGroup> AsGroup(const std::shared_ptr<DrawBase>& draw) {
  return std::dynamic_pointer_cast<DrawGroup>(draw);
}

bool Contains(const DrawList& list, const std::shared_ptr<DrawBase>& draw) {
  return std::find(list.begin(), list.end(), draw) != list.end();
}

// Appends the draw, or a group's members, once each.
void CollectOnce(DrawList& collected, std::unordered_set<const DrawBase*>& seen,
                 const std::shared_ptr<DrawBase>& draw) {
  if (seen.insert(draw.get()).second) collected.push_back(draw);
}

void CollectContents(DrawList& collected, std::unordered_set<const DrawBase*>& seen,
                     const std::shared_ptr<DrawBase>& draw) {
  if (auto group = AsGroup(draw)) {
    for (const auto& member : group->draws()) CollectOnce(collected, seen, member);
  } else {
    CollectOnce(collected, seen, draw);
  }
}

// Moves each selected element of `list` one place up (towards the end) past
// an unselected neighbour, walking against the movement so that a block of
// selected draws moves as one; ExchangeDownwards the other way.
bool ExchangeUpwards(DrawList& list, const DrawSet& selected) {
  bool exchanged = false;
  for (size_t j = list.size(); j-- > 0;) {
    if (selected.contains(list[j]) && j + 1 < list.size() && !selected.contains(list[j + 1])) {
      std::swap(list[j], list[j + 1]);
      exchanged = true;
    }
  }
  return exchanged;
}

bool ExchangeDownwards(DrawList& list, const DrawSet& selected) {
  bool exchanged = false;
  for (size_t j = 1; j < list.size(); ++j) {
    if (selected.contains(list[j]) && !selected.contains(list[j - 1])) {
      std::swap(list[j], list[j - 1]);
      exchanged = true;
    }
  }
  return exchanged;
}

}  // namespace

// ---- Finding

bool PaintManager::containsDraw(const std::shared_ptr<DrawBase>& draw) const {
  if (!draw) return false;
  return Contains(aryDraw_, draw) || groupForDraw(draw) != nullptr;
}

std::shared_ptr<DrawGroup> PaintManager::groupForDraw(const std::shared_ptr<DrawBase>& draw) const {
  if (!draw || Contains(aryDraw_, draw)) return nullptr;
  for (const auto& element : aryDraw_) {
    auto group = AsGroup(element);
    if (group && Contains(group->draws(), draw)) return group;
  }
  return nullptr;
}

int64_t PaintManager::indexOfDraw(const std::shared_ptr<DrawBase>& draw) const {
  auto found = std::find(aryDraw_.begin(), aryDraw_.end(), draw);
  if (!draw || found == aryDraw_.end()) return kNotFound;
  return found - aryDraw_.begin();
}

DrawList PaintManager::drawsInRect(const Rect& rect) const {
  DrawList found;
  if (!(rect.width() > 1) || !(rect.height() > 1)) return found;
  for (const auto& draw : aryDraw_) {
    if (!draw->visible() || draw == drawBackground_) continue;
    const Rect area = draw->drawRect();
    if (!RectIntersectsRect(area, rect)) continue;
    auto group = AsGroup(draw);
    if (!group || RectContainsRect(rect, area)) {
      found.push_back(draw);
      continue;
    }
    for (const auto& member : group->draws()) {
      if (member->visible() && RectIntersectsRect(member->drawRect(), rect)) {
        found.push_back(member);
      }
    }
  }
  return found;
}

// ---- Adding and removing

bool PaintManager::insertDraw(std::shared_ptr<DrawBase> draw, int64_t index) {
  const auto count = static_cast<int64_t>(aryDraw_.size());
  if (!draw || Contains(aryDraw_, draw) || index < 0 || index > count) return false;
  if (index == 0 && drawBackground_) return false;  // nothing goes below the background
  if (index == count) return addDraw(std::move(draw));
  aryDraw_.insert(aryDraw_.begin() + index, draw);
  respondToChangeOfDraws({draw});
  return true;
}

bool PaintManager::replaceDraw(const std::shared_ptr<DrawBase>& old,
                               std::shared_ptr<DrawBase> replacement) {
  if (!old || !replacement || Contains(aryDraw_, replacement)) return false;
  const bool replacesBackground = old == drawBackground_;
  auto newBackground = std::dynamic_pointer_cast<DrawImage>(replacement);
  if (replacesBackground && !newBackground) return false;
  const int64_t index = indexOfDraw(old);
  if (index != kNotFound) {
    aryDraw_[index] = replacement;
    old->setGroup(nullptr);
    replacement->setGroup(nullptr);
  } else {
    auto group = groupForDraw(old);
    if (!group || !group->replaceDraw(old, replacement)) return false;
  }
  if (replacesBackground) setBackgroundDraw(newBackground);
  respondToChangeOfDraws({replacement});
  return true;
}

bool PaintManager::removeDraw(const std::shared_ptr<DrawBase>& draw) {
  if (!draw) return false;
  const int64_t index = indexOfDraw(draw);
  bool removed = false;
  if (index != kNotFound) {
    aryDraw_.erase(aryDraw_.begin() + index);
    if (draw == drawBackground_) setBackgroundDraw(nullptr);
    removed = true;
  } else if (auto group = groupForDraw(draw)) {
    removed = group->removeDraw(draw);
  }
  if (removed) dropBuffer();
  return removed;
}

// ---- Reordering

bool PaintManager::canMoveDrawsUp(const DrawList& selection) const {
  const DrawSet selected(selection);
  for (size_t i = aryDraw_.size(); i-- > 0;) {
    const auto& draw = aryDraw_[i];
    if (draw == drawBackground_) continue;
    if (selected.contains(draw)) {
      if (i + 1 < aryDraw_.size() && !selected.contains(aryDraw_[i + 1])) return true;
    } else if (auto group = AsGroup(draw)) {
      const DrawList& members = group->draws();
      for (size_t j = members.size(); j-- > 0;) {
        if (selected.contains(members[j]) && j + 1 < members.size() &&
            !selected.contains(members[j + 1])) {
          return true;
        }
      }
    }
  }
  return false;
}

bool PaintManager::canMoveDrawsDown(const DrawList& selection) const {
  const DrawSet selected(selection);
  for (size_t i = 0; i < aryDraw_.size(); ++i) {
    const auto& draw = aryDraw_[i];
    if (draw == drawBackground_) continue;
    if (selected.contains(draw)) {
      if (i > 0 && aryDraw_[i - 1] != drawBackground_ && !selected.contains(aryDraw_[i - 1])) {
        return true;
      }
    } else if (auto group = AsGroup(draw)) {
      const DrawList& members = group->draws();
      for (size_t j = 1; j < members.size(); ++j) {
        if (selected.contains(members[j]) && !selected.contains(members[j - 1])) return true;
      }
    }
  }
  return false;
}

namespace {

// Moves the selected members of a group one step with `exchange`; whether
// any moved.
template <class Exchange>
bool ReorderMembers(const std::shared_ptr<DrawBase>& draw, const DrawSet& selected,
                    Exchange exchange) {
  auto group = AsGroup(draw);
  if (!group || group->draws().empty()) return false;
  DrawList members = group->draws();
  if (!exchange(members, selected)) return false;
  group->setDraws(members);
  return true;
}

}  // namespace

bool PaintManager::respondToReorder(bool belowTopChanged, bool topGroupChanged) {
  if (!belowTopChanged && !topGroupChanged) return false;
  // Only the top group's members moved: the buffer below it is still right.
  if (belowTopChanged) {
    dropBuffer();
  } else {
    refreshImage();
  }
  return true;
}

bool PaintManager::moveUpDraws(const DrawList& selection) {
  if (selection.empty() || aryDraw_.empty()) return false;
  const DrawSet selected(selection);
  bool belowTopChanged = false;
  bool topGroupChanged = false;
  for (size_t i = aryDraw_.size(); i-- > 0;) {
    if (selected.contains(aryDraw_[i]) && i + 1 < aryDraw_.size() &&
        !selected.contains(aryDraw_[i + 1])) {
      std::swap(aryDraw_[i], aryDraw_[i + 1]);
      belowTopChanged = true;
    } else if (ReorderMembers(aryDraw_[i], selected, ExchangeUpwards)) {
      (i + 1 == aryDraw_.size() ? topGroupChanged : belowTopChanged) = true;
    }
  }
  return respondToReorder(belowTopChanged, topGroupChanged);
}

bool PaintManager::moveDownDraws(const DrawList& selection) {
  const size_t lowest = drawBackground_ ? 1 : 0;
  if (selection.empty() || aryDraw_.size() <= lowest) return false;
  const DrawSet selected(selection);
  bool belowTopChanged = false;
  bool topGroupChanged = false;
  for (size_t i = lowest; i < aryDraw_.size(); ++i) {
    if (selected.contains(aryDraw_[i]) && i > lowest && !selected.contains(aryDraw_[i - 1])) {
      std::swap(aryDraw_[i], aryDraw_[i - 1]);
      belowTopChanged = true;
    } else if (ReorderMembers(aryDraw_[i], selected, ExchangeDownwards)) {
      (i + 1 == aryDraw_.size() ? topGroupChanged : belowTopChanged) = true;
    }
  }
  return respondToReorder(belowTopChanged, topGroupChanged);
}

// ---- Grouping

bool PaintManager::canMergeDraws(const DrawList& selection) const {
  if (selection.empty()) return false;
  const DrawSet topLevel(aryDraw_);
  return std::all_of(selection.begin(), selection.end(),
                     [&](const auto& draw) { return topLevel.contains(draw); });
}

std::shared_ptr<DrawGroup> PaintManager::mergeDraws(const DrawList& selection) {
  if (!canMergeDraws(selection)) return nullptr;
  DrawList collected;
  std::unordered_set<const DrawBase*> seen;
  for (const auto& draw : selection) CollectContents(collected, seen, draw);
  auto group = DrawGroup::withDraws(collected);

  // The group goes where the topmost selected draw was, counted after the
  // selected draws below it are gone.
  const DrawSet selected(selection);
  size_t insertAt = 0;
  size_t unselectedBelow = 0;
  for (const auto& draw : aryDraw_) {
    if (selected.contains(draw)) {
      insertAt = unselectedBelow;
    } else {
      ++unselectedBelow;
    }
  }
  if (selected.contains(drawBackground_)) drawBackground_.reset();
  std::erase_if(aryDraw_, [&](const auto& draw) { return selected.contains(draw); });
  aryDraw_.insert(aryDraw_.begin() + static_cast<std::ptrdiff_t>(insertAt), group);
  dropBuffer();
  return group;
}

std::shared_ptr<DrawGroup> PaintManager::mergeDraws(const DrawList& selection,
                                                    const std::shared_ptr<DrawBase>& target) {
  if (!target || !Contains(aryDraw_, target)) return nullptr;
  if (selection.size() == 1 && selection.front() == target) return nullptr;
  const DrawSet selected(selection);
  DrawList collected;
  std::unordered_set<const DrawBase*> seen;
  size_t targetIndex = 0;
  for (size_t i = 0; i < aryDraw_.size();) {
    const auto draw = aryDraw_[i];
    if (draw == target || selected.contains(draw)) {
      CollectContents(collected, seen, draw);
      if (draw == target) {
        targetIndex = i++;
        continue;
      }
      if (draw == drawBackground_) drawBackground_.reset();
      aryDraw_.erase(aryDraw_.begin() + static_cast<std::ptrdiff_t>(i));
      continue;
    }
    if (auto group = AsGroup(draw)) {
      const DrawList members = group->draws();
      for (const auto& member : members) {
        if (!selected.contains(member)) continue;
        CollectOnce(collected, seen, member);
        group->removeDraw(member);
      }
    }
    ++i;
  }
  auto group = DrawGroup::withDraws(collected);
  aryDraw_[targetIndex] = group;
  if (target == drawBackground_) drawBackground_.reset();
  dropBuffer();
  return group;
}

bool PaintManager::canUnMergeDraws(const DrawList& selection) const {
  const DrawSet topLevel(aryDraw_);
  return std::any_of(selection.begin(), selection.end(), [&](const auto& draw) {
    return AsGroup(draw) && topLevel.contains(draw);
  });
}

std::optional<DrawList> PaintManager::unMergeDraws(const DrawList& selection) {
  if (!canUnMergeDraws(selection)) return std::nullopt;
  DrawList released;
  bool pictureChanged = false;
  for (const auto& draw : selection) {
    auto group = AsGroup(draw);
    const int64_t index = indexOfDraw(draw);
    if (!group || index == kNotFound) continue;
    // The members paint as the group did, unless the group was the top draw
    // (the buffer then lacks all but the new top), was hidden or was being
    // turned as a whole.
    if (index + 1 == static_cast<int64_t>(aryDraw_.size()) || !group->visible() ||
        group->rotating()) {
      pictureChanged = true;
    }
    DrawList members;
    for (const auto& member : group->draws()) {
      if (!Contains(aryDraw_, member)) members.push_back(member);
    }
    aryDraw_.insert(aryDraw_.begin() + index, members.begin(), members.end());
    for (const auto& member : members) {
      member->setGroup(nullptr);
      released.push_back(member);
    }
    aryDraw_.erase(aryDraw_.begin() + index + static_cast<std::ptrdiff_t>(members.size()));
  }
  if (pictureChanged) dropBuffer();
  return released;
}

bool PaintManager::moveDraws(const DrawList& selection, const std::shared_ptr<DrawBase>& target,
                             int64_t index) {
  if (selection.empty() || index < 0) return false;
  const DrawSet selected(selection);
  std::shared_ptr<DrawGroup> targetGroup;
  if (target) {
    targetGroup = AsGroup(target);
    if (selected.contains(target) || !Contains(aryDraw_, target) || !targetGroup ||
        static_cast<int64_t>(targetGroup->draws().size()) < index) {
      return false;
    }
  } else if (static_cast<int64_t>(aryDraw_.size()) < index) {
    return false;
  }
  const LayerStatus earlier = savedLayerDrawsStatus();

  DrawList collected;
  std::unordered_set<const DrawBase*> seen;
  for (size_t i = 0; i < aryDraw_.size();) {
    const auto draw = aryDraw_[i];
    if (selected.contains(draw)) {
      // Into a group a group goes as its members; to the top level it moves
      // whole.
      if (targetGroup) {
        CollectContents(collected, seen, draw);
      } else {
        CollectOnce(collected, seen, draw);
        if (static_cast<int64_t>(i) < index) --index;
      }
      if (draw == drawBackground_) drawBackground_.reset();
      aryDraw_.erase(aryDraw_.begin() + static_cast<std::ptrdiff_t>(i));
      continue;
    }
    if (auto group = AsGroup(draw)) {
      const DrawList members = group->draws();
      for (const auto& member : members) {
        if (!selected.contains(member)) continue;
        CollectOnce(collected, seen, member);
        if (group == targetGroup && group->indexOfDraw(member) < index) --index;
        group->removeDraw(member);
      }
    }
    ++i;
  }
  if (collected.empty()) return false;

  for (const auto& draw : collected) draw->setGroup(nullptr);
  if (targetGroup) {
    DrawList members = targetGroup->draws();
    index = std::min<int64_t>(index, static_cast<int64_t>(members.size()));
    members.insert(members.begin() + index, collected.begin(), collected.end());
    targetGroup->setDraws(members);
  } else {
    // Nothing goes below the background.
    if (drawBackground_ && index == 0) index = 1;
    index = std::min<int64_t>(index, static_cast<int64_t>(aryDraw_.size()));
    aryDraw_.insert(aryDraw_.begin() + index, collected.begin(), collected.end());
  }

  if (savedLayerDrawsStatus() == earlier) return false;
  dropBuffer();
  return true;
}

// ---- Undo of structure

LayerStatus PaintManager::savedLayerDrawsStatus() const {
  LayerStatus status{DrawList{}, std::vector<DrawList>{}};
  for (const auto& draw : aryDraw_) {
    if (draw == drawBackground_) continue;
    status.layers->push_back(draw);
    if (auto group = AsGroup(draw)) status.subLayers->push_back(group->draws());
  }
  return status;
}

std::optional<DrawList> PaintManager::restoreFromLayerStatus(const LayerStatus& status) {
  if (!status.layers || !status.subLayers) return std::nullopt;
  const DrawList& layers = *status.layers;
  const std::vector<DrawList>& subLayers = *status.subLayers;

  DrawList unknown;
  size_t groupIndex = 0;
  for (const auto& layer : layers) {
    if (!layer) continue;
    const bool isGroup = AsGroup(layer) != nullptr;
    if (!containsDraw(layer)) {
      unknown.push_back(layer);
    } else if (isGroup && groupIndex < subLayers.size()) {
      for (const auto& member : subLayers[groupIndex]) {
        if (member && !containsDraw(member)) unknown.push_back(member);
      }
    }
    if (isGroup) ++groupIndex;
  }

  groupIndex = 0;
  for (const auto& layer : layers) {
    auto group = AsGroup(layer);
    if (!group) continue;
    if (groupIndex >= subLayers.size()) return std::nullopt;
    DrawList members;
    for (const auto& member : subLayers[groupIndex++]) {
      if (member) members.push_back(member);
    }
    group->setDraws(members);
  }

  aryDraw_.clear();
  for (const auto& layer : layers) {
    if (layer && !Contains(aryDraw_, layer)) aryDraw_.push_back(layer);
  }
  setBackgroundDraw(drawBackground_);
  dropBuffer();
  return unknown;
}

}  // namespace paintdoc
