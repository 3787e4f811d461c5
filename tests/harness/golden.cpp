#include "harness/golden.h"

#include "harness/paths.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace quillpost::testing {
namespace {

/// The line that holds the byte at `position`, without its line feed.
std::string_view lineAt(std::string_view text, std::size_t position) {
  const std::size_t before =
      position == 0 ? std::string_view::npos : text.rfind('\n', position - 1);
  const std::size_t start = before == std::string_view::npos ? 0 : before + 1;
  return text.substr(start, std::min(text.find('\n', position), text.size()) - start);
}

/// The byte at `position` in words, so that an invisible one can be seen.
std::string byteAt(std::string_view text, std::size_t position) {
  if (position >= text.size()) return "the end";
  if (text[position] == '\n') return "a line feed";
  return ::testing::PrintToString(text[position]);
}

}  // namespace

GoldenMode& goldenMode() {
  static GoldenMode mode = GoldenMode::compare;
  return mode;
}

::testing::AssertionResult sameText(std::string_view expected, std::string_view actual) {
  if (expected == actual) return ::testing::AssertionSuccess();
  const auto [left, right] =
      std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
  const auto position = static_cast<std::size_t>(std::distance(expected.begin(), left));
  const std::string_view common = expected.substr(0, position);
  const auto line = 1 + std::count(common.begin(), common.end(), '\n');
  const std::size_t column =
      1 +
      (common.rfind('\n') == std::string_view::npos ? position : position - common.rfind('\n') - 1);
  return ::testing::AssertionFailure()
         << "the texts part at line " << line << ", byte " << column << ": "
         << byteAt(expected, position) << " was expected, " << byteAt(actual, position) << " came\n"
         << "  expected: " << lineAt(expected, position) << "\n"
         << "  actual:   " << lineAt(actual, position);
}

::testing::AssertionResult matchesGolden(const std::string& path, std::string_view actual,
                                         GoldenMode mode) {
  // An absolute path replaces what stands before it.
  const std::filesystem::path file = std::filesystem::path(inTests("golden")) / path;
  if (mode == GoldenMode::rewrite) {
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(actual.data(), static_cast<std::streamsize>(actual.size()));
    out.close();
    if (!out) return ::testing::AssertionFailure() << "could not write " << file;
    return ::testing::AssertionSuccess();
  }
  std::ifstream in(file, std::ios::binary);
  if (!in) return ::testing::AssertionFailure() << "there is no golden file " << file;
  const std::string expected{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  ::testing::AssertionResult result = sameText(expected, actual);
  if (!result) result << "\n  golden:   " << file.string() << " (--update rewrites it)";
  return result;
}

}  // namespace quillpost::testing
