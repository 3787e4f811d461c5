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

}  // namespace
}  // namespace quillpost
