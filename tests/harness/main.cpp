// The main function of every test program: GoogleTest's arguments; "--update", which rewrites the
// golden files that the tests of the run compare with; and which sessions tests of chance play.

#include "base/text.h"
#include "harness/chance.h"
#include "harness/golden.h"

#include <gtest/gtest.h>

#include <iostream>
#include <optional>
#include <string_view>

namespace quillpost::testing {
namespace {

/// The number in "NAME=NUMBER"; nothing when it is none, negative or of another name.
std::optional<uint64_t> numberOf(std::string_view flag, std::string_view name) {
  if (!flag.starts_with(name)) return std::nullopt;
  const std::optional<int64_t> number = text::parseInteger(flag.substr(name.size()));
  if (!number || *number < 0) return std::nullopt;
  return static_cast<uint64_t>(*number);
}

/// Takes a flag of ours. False for one that nobody knows.
bool takeFlag(std::string_view flag) {
  if (flag == "--update") {
    goldenMode() = GoldenMode::rewrite;
  } else if (const auto seed = numberOf(flag, "--seed=")) {
    chanceRun().seed = *seed;
  } else if (const auto sessions = numberOf(flag, "--sessions=")) {
    chanceRun().sessions = *sessions;
  } else {
    return false;
  }
  return true;
}

}  // namespace
}  // namespace quillpost::testing

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  for (int i = 1; i < argc; ++i) {
    if (!quillpost::testing::takeFlag(argv[i])) {
      std::cerr << "usage: " << argv[0] << " [--update] [--seed=N] [--sessions=N] [--gtest_...]\n";
      return 2;
    }
  }
  return RUN_ALL_TESTS();
}
