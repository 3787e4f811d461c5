#include "board/serving/rows.h"

#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

TEST(Rows, ALineIsReadAsItWasWritten) {
  const std::string body = R"({"id":"T-abc234","name":"a, \"row\":b","place":1})";
  const std::string line = exportLine("T-abc234", "thread", "T-abc234", body);
  EXPECT_EQ(line.back(), '\n');
  const auto row = readExportLine(std::string_view(line).substr(0, line.size() - 1));
  ASSERT_TRUE(row);
  EXPECT_EQ(row->thread, "T-abc234");
  EXPECT_EQ(row->kind, "thread");
  EXPECT_EQ(row->body, body);
}

TEST(Rows, WhatIsNoRowOfABoardIsNotRead) {
  for (const char* line : {"", "{}", "nonsense", R"({"thread":"T","kind":"thread","id":"T"})",
                           R"({"thread":"T","kind":"nothing","id":"T","row":{"id":"T"}})",
                           R"({"thread":"T","kind":"thread","id":"T","row":{"id":"T"}})"}) {
    EXPECT_FALSE(readExportLine(line)) << line;
  }
}

}  // namespace
}  // namespace quillpost::board
