// The main function of every test program: GoogleTest's arguments, and "--update", which rewrites
// the golden files that the tests of the run compare with.

#include "harness/golden.h"

#include <gtest/gtest.h>

#include <iostream>
#include <string_view>

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  for (int i = 1; i < argc; ++i) {
    if (std::string_view(argv[i]) != "--update") {
      std::cerr << "usage: " << argv[0] << " [--update] [--gtest_...]\n";
      return 2;
    }
    quillpost::testing::goldenMode() = quillpost::testing::GoldenMode::rewrite;
  }
  return RUN_ALL_TESTS();
}
