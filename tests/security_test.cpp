// Each promise of SECURITY.md names tests, and those tests exist.

#include "base/text.h"
#include "harness/paths.h"
#include "harness/temp_dir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost {
namespace {

/// One row of the page.
struct Promise {
  std::string_view text;
  std::vector<std::string_view> tests;
};

/// The sentences that the tests of the page in a browser are called by.
void addPageTests(std::set<std::string>& names) {
  constexpr std::string_view begins = "  it('", ends = "', async";
  for (const auto& entry : std::filesystem::directory_iterator(testing::inTests("page"))) {
    if (!entry.path().string().ends_with(".test.mjs")) continue;
    const std::string file = testing::readFile(entry.path().string());
    for (const std::string_view line : text::split(file, '\n')) {
      const std::size_t end = line.find(ends);
      if (line.starts_with(begins) && end != std::string_view::npos)
        names.emplace(line.substr(begins.size(), end - begins.size()));
    }
  }
}

/// Every "Suite.Name" that some file of the tests defines, and every sentence of the page's.
std::set<std::string> testNames() {
  std::set<std::string> names;
  addPageTests(names);
  for (const auto& entry : std::filesystem::recursive_directory_iterator(testing::inTests(""))) {
    if (!entry.path().string().ends_with("_test.cpp")) continue;
    const std::string file = testing::readFile(entry.path().string());
    for (const std::string_view line : text::split(file, '\n')) {
      if (!line.starts_with("TEST")) continue;
      const std::size_t open = line.find('('), comma = line.find(", "), close = line.find(')');
      if (open == std::string_view::npos || comma > close || close == std::string_view::npos)
        continue;
      names.insert(text::cat(line.substr(open + 1, comma - open - 1), ".",
                             line.substr(comma + 2, close - comma - 2)));
    }
  }
  return names;
}

/// What stands between backquotes.
std::vector<std::string_view> quotedIn(std::string_view cell) {
  std::vector<std::string_view> quoted;
  const std::vector<std::string_view> pieces = text::split(cell, '`');
  for (std::size_t i = 1; i < pieces.size(); i += 2) quoted.push_back(pieces[i]);
  return quoted;
}

std::vector<Promise> promisesOf(std::string_view page) {
  std::vector<Promise> promises;
  for (const std::string_view line : text::split(page, '\n')) {
    if (!line.starts_with("| ") || line == "| Promise | Tests |") continue;
    const std::vector<std::string_view> cells = text::split(line, '|');
    promises.push_back({cells.at(1), quotedIn(cells.at(2))});
  }
  return promises;
}

TEST(Security, EachPromiseNamesTestsThatExist) {
  const std::set<std::string> names = testNames();
  const std::string page = testing::readFile(testing::inSources("SECURITY.md"));
  const std::vector<Promise> promises = promisesOf(page);
  EXPECT_GT(promises.size(), 20U);
  for (const Promise& promise : promises) {
    EXPECT_FALSE(promise.tests.empty()) << promise.text;
    for (const std::string_view test : promise.tests)
      EXPECT_TRUE(names.contains(std::string(test))) << test << " is no test:" << promise.text;
  }
}

TEST(Security, NothingIsPromisedOutsideTheTables) {
  const std::string page = testing::readFile(testing::inSources("SECURITY.md"));
  const std::size_t firstTable = page.find("\n## ");
  ASSERT_NE(firstTable, std::string::npos);
  for (const std::string_view line : text::split(std::string_view(page).substr(firstTable), '\n'))
    EXPECT_TRUE(line.empty() || line.starts_with("## What it ") || line.starts_with("|")) << line;
}

}  // namespace
}  // namespace quillpost
