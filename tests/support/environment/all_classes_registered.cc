// Every test program starts with every archivable class registered, as a
// program that embeds the library does before reading documents or asking a
// draw what can be edited: rules that name classes of other modules look
// them up in the class registry, and no test may depend on another having
// registered them first.
#include <gtest/gtest.h>

#include "document/register_all_classes.h"

namespace {

class AllClassesRegistered : public ::testing::Environment {
 public:
  void SetUp() override { paintdoc::RegisterAllClasses(); }
};

const auto* const kEnvironment = ::testing::AddGlobalTestEnvironment(new AllClassesRegistered);

}  // namespace
