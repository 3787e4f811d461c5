#include "harness/fake_environment.h"

#include <gtest/gtest.h>

#include <stdlib.h>

namespace quillpost::testing {
namespace {

constexpr const char* name = "QUILLPOST_ENVIRONMENT_TEST";

TEST(FakeEnvironment, GivesWhatItWasGivenAndNothingElse) {
  const FakeEnvironment environment({{"FULL", "text"}, {"EMPTY", ""}});
  EXPECT_EQ(environment.get("FULL"), "text");
  EXPECT_EQ(environment.get("EMPTY"), "");
  EXPECT_EQ(environment.get("MISSING"), std::nullopt);
  EXPECT_EQ(environment.get("full"), std::nullopt);
  EXPECT_EQ(FakeEnvironment().get("FULL"), std::nullopt);
}

TEST(FakeEnvironment, DoesNotSeeTheProcess) {
  ASSERT_EQ(::setenv(name, "a value", 1), 0);
  EXPECT_EQ(FakeEnvironment().get(name), std::nullopt);
  ASSERT_EQ(::unsetenv(name), 0);
}

}  // namespace
}  // namespace quillpost::testing
