// Group membership: adoption, removal, insertion and replacement, with the
// member-to-group links kept right.
#include <gtest/gtest.h>

#include "draws/draw_group.h"
#include "draws/draw_lines.h"
#include "draws/draw_rectangle.h"
#include "platform/values/not_found.h"

namespace paintdoc {
namespace {

class DrawGroupMembers : public ::testing::Test {
 protected:
  std::shared_ptr<DrawGroup> group = MakeDraw<DrawGroup>();
  std::shared_ptr<DrawBase> a = MakeDraw<DrawLine>();
  std::shared_ptr<DrawBase> b = MakeDraw<DrawRectangle>();
  std::shared_ptr<DrawBase> c = MakeDraw<DrawEllipse>();
};

TEST_F(DrawGroupMembers, SetDrawsAdoptsEveryMember) {
  group->setDraws({a, b});
  EXPECT_EQ(a->group(), group.get());
  EXPECT_EQ(b->group(), group.get());
  EXPECT_EQ(group->indexOfDraw(b), 1);
  EXPECT_EQ(group->indexOfDraw(c), kNotFound);
  EXPECT_EQ(group->indexOfDraw(nullptr), kNotFound);
}

TEST_F(DrawGroupMembers, RemoveClearsOnlyLinksThatPointHere) {
  group->setDraws({a, b});
  auto other = MakeDraw<DrawGroup>();
  b->setGroup(other.get());
  EXPECT_TRUE(group->removeDraw(a));
  EXPECT_EQ(a->group(), nullptr);
  EXPECT_FALSE(group->removeDraw(a));
  EXPECT_FALSE(group->removeDraw(nullptr));
  group->removeAllDraws();
  EXPECT_TRUE(group->draws().empty());
  EXPECT_EQ(b->group(), other.get());
}

TEST_F(DrawGroupMembers, InsertAcceptsIndicesUpToTheCount) {
  group->setDraws({a});
  EXPECT_FALSE(group->insertDraw(b, 2));
  EXPECT_TRUE(group->insertDraw(b, 1));  // equal to the count: appends
  EXPECT_EQ(group->indexOfDraw(b), 1);
  EXPECT_FALSE(group->insertDraw(b, 0));  // already a member
  EXPECT_FALSE(group->insertDraw(nullptr, 0));
  EXPECT_EQ(b->group(), nullptr);  // the caller sets the link
}

TEST_F(DrawGroupMembers, ReplaceRefusesNullAndMembers) {
  group->setDraws({a, b});
  EXPECT_FALSE(group->replaceDraw(a, b));
  EXPECT_FALSE(group->replaceDraw(a, nullptr));
  EXPECT_FALSE(group->replaceDraw(c, a));
  EXPECT_EQ(group->draws(), (DrawList{a, b}));
  EXPECT_TRUE(group->replaceDraw(a, c));
  EXPECT_EQ(group->draws(), (DrawList{c, b}));
  EXPECT_EQ(a->group(), nullptr);
  EXPECT_EQ(c->group(), group.get());
}

TEST_F(DrawGroupMembers, VisibleDrawNeedsAVisibleMember) {
  EXPECT_FALSE(group->hasVisibleDraw());
  a->setVisible(false);
  group->setDraws({a});
  EXPECT_FALSE(group->hasVisibleDraw());
  group->setDraws({a, b});
  EXPECT_TRUE(group->hasVisibleDraw());
}

TEST_F(DrawGroupMembers, ReleasedGroupLeavesNoMemberPointingAtIt) {
  {
    auto temporary = MakeDraw<DrawGroup>();
    temporary->setDraws({a});
  }
  EXPECT_EQ(a->group(), nullptr);
}

}  // namespace
}  // namespace paintdoc
