#include "qp/manual.h"

#include "base/text.h"
#include "qp/manual_text.h"
#include "qp/status.h"
#include "tools/tools.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace quillpost {
namespace {

TEST(Manual, HasAPartForEveryVerb) {
  const std::string page = manualPage();
  for (const Tool& tool : tools)
    EXPECT_NE(page.find(text::cat(".Ss ", tool.commandLine.name, "\n")), std::string::npos);
}

TEST(Manual, IsPlainAsciiWithoutARequestOfATexts) {
  const std::string page = manualPage();
  for (const std::string_view line : text::split(page, '\n')) {
    EXPECT_TRUE(std::ranges::all_of(line, [](char c) { return c >= ' ' && c <= '~'; })) << line;
    EXPECT_TRUE(!line.starts_with('.') || (line.size() > 2 && line[1] >= 'A' && line[1] <= 'Z'))
        << line;
  }
}

TEST(Manual, SaysWhatEachStatusMeans) {
  for (const EndRow& row : endRows) {
    const std::string number = text::cat(static_cast<int>(row.status));
    EXPECT_TRUE(std::ranges::any_of(texts::statusMeanings, [&](const texts::StatusMeaning& one) {
      return one.number == number;
    })) << number;
  }
}

}  // namespace
}  // namespace quillpost
