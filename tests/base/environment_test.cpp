#include "base/environment.h"

#include <gtest/gtest.h>

#include <stdlib.h>

namespace quillpost {
namespace {

constexpr const char* name = "QUILLPOST_ENVIRONMENT_TEST";

TEST(ProcessEnvironment, GivesTheValueOfAVariableThatIsSet) {
  ASSERT_EQ(::setenv(name, "a value", 1), 0);
  EXPECT_EQ(ProcessEnvironment().get(name), "a value");
}

TEST(ProcessEnvironment, TellsAnEmptyValueFromAMissingVariable) {
  ASSERT_EQ(::setenv(name, "", 1), 0);
  EXPECT_EQ(ProcessEnvironment().get(name), "");
  ASSERT_EQ(::unsetenv(name), 0);
  EXPECT_EQ(ProcessEnvironment().get(name), std::nullopt);
}

TEST(ProcessEnvironment, GivesBytesThatAreNotUtf8AsTheyAre) {
  ASSERT_EQ(::setenv(name, "\xFF\xC3", 1), 0);
  EXPECT_EQ(ProcessEnvironment().get(name), "\xFF\xC3");
  ASSERT_EQ(::unsetenv(name), 0);
}

TEST(MapEnvironment, GivesWhatItWasGivenAndNothingElse) {
  const MapEnvironment environment({{"FULL", "text"}, {"EMPTY", ""}});
  EXPECT_EQ(environment.get("FULL"), "text");
  EXPECT_EQ(environment.get("EMPTY"), "");
  EXPECT_EQ(environment.get("MISSING"), std::nullopt);
  EXPECT_EQ(environment.get("full"), std::nullopt);
  EXPECT_EQ(MapEnvironment().get("FULL"), std::nullopt);
}

TEST(MapEnvironment, DoesNotSeeTheProcess) {
  ASSERT_EQ(::setenv(name, "a value", 1), 0);
  EXPECT_EQ(MapEnvironment().get(name), std::nullopt);
  ASSERT_EQ(::unsetenv(name), 0);
}

}  // namespace
}  // namespace quillpost
