#pragma once

// Texts compared as a whole, and golden files that can be rewritten: run the test program with
// --update, then read the difference before committing it.

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace quillpost::testing {

/// What to do with a golden file.
enum class GoldenMode { compare, rewrite };

/// What this run does with them: compares, until the main function takes `--update` for an argument
/// (harness/main.cpp).
GoldenMode& goldenMode();

/// Whether two texts are equal; where they first part, when they are not.
::testing::AssertionResult sameText(std::string_view expected, std::string_view actual);

/// Whether a text is what the file at `path` holds. In `rewrite` the file is written and the answer
/// is yes. A path that is not absolute starts at the folder of golden files.
::testing::AssertionResult matchesGolden(const std::string& path, std::string_view actual,
                                         GoldenMode mode = goldenMode());

}  // namespace quillpost::testing
