#include "draws/draw_group.h"

#include <algorithm>
#include <unordered_set>

#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "platform/values/log.h"
#include "platform/values/not_found.h"

namespace paintdoc {

DrawGroup::~DrawGroup() { removeAllDraws(); }

void DrawGroup::encodeWithCoder(KeyedArchiver& coder) const {
  DrawBase::encodeWithCoder(coder);
  if (!aryDraws_.empty()) coder.encodeArrayOfObjectsForKey(aryDraws_, "Draws");
}

bool DrawGroup::initWithCoder(KeyedUnarchiver& coder) {
  if (!DrawBase::initWithCoder(coder)) return false;
  // Members of an unknown class decode as absent and are left out.
  aryDraws_ = UniqueUnheldDraws(coder.decodeArrayOfObjectsForKey<DrawBase>("Draws"));
  adoptMembers();
  return true;
}

bool DrawGroup::hasBorder() const {
  bool metVisibleMember = false;
  for (const auto& member : aryDraws_) {
    if (!member->visible()) continue;
    if (member->hasBorder() || metVisibleMember) return true;
    metVisibleMember = true;
  }
  return false;
}

void DrawGroup::drawInImage(const std::shared_ptr<Bitmap>& image) {
  for (const auto& member : aryDraws_) {
    if (member->visible()) member->drawInImage(image);
  }
}

void DrawGroup::setDraws(const DrawList& draws) {
  if (&draws == &aryDraws_) return;
  aryDraws_ = draws;
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
  if (!draw || indexOfDraw(draw) != kNotFound) return false;
  if (index < 0 || index > static_cast<int64_t>(aryDraws_.size())) return false;
  aryDraws_.insert(aryDraws_.begin() + index, draw);
  return true;
}

bool DrawGroup::replaceDraw(const std::shared_ptr<DrawBase>& old,
                            const std::shared_ptr<DrawBase>& replacement) {
  const int64_t index = indexOfDraw(old);
  if (index == kNotFound || !replacement || indexOfDraw(replacement) != kNotFound) {
    return false;
  }
  aryDraws_[index] = replacement;
  releaseMember(*old);
  replacement->setGroup(this);
  return true;
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
