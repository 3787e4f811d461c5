#include "board/rules/people.h"

#include "board/desk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

TEST(People, AnAgentIsFoundByFingerprintHandleOrName) {
  Desk desk;
  desk.ask("AA2", "register", R"("name":"Ann")");
  EXPECT_EQ(whoIs(desk.board, desk.mark("AA2")), &desk.seat("AA2"));
  EXPECT_EQ(whoIs(desk.board, "aa2"), &desk.seat("AA2"));
  EXPECT_EQ(whoIs(desk.board, "ANN"), &desk.seat("AA2"));
  EXPECT_EQ(whoIs(desk.board, "Zoe"), nullptr);
  EXPECT_EQ(whoIs(desk.board, ""), nullptr);
}

TEST(People, ANameThatTwoShareNamesNeither) {
  Desk desk;
  desk.ask("AA2", "register", R"("name":"Ann")");
  desk.ask("BB3", "register", R"("name":"Ann")");
  EXPECT_EQ(whoIs(desk.board, "Ann"), nullptr);
}

TEST(People, ATerminalWithNobodyHomeHasAHandleAndNoAgent) {
  Desk desk;
  desk.sit("CC4");
  EXPECT_NE(seatAt(desk.board, "CC4"), nullptr);
  EXPECT_EQ(whoIs(desk.board, "CC4"), nullptr);
}

TEST(People, TheRoleGivesTheAuthority) {
  for (const auto& [role, authority] : {std::pair{"reviewer", "reviewer"},
                                        {" Reviewer ", "reviewer"},
                                        {"LEAD", "lead"},
                                        {"planner", "contributor"},
                                        {"lead of nothing", "contributor"},
                                        {"", "contributor"}}) {
    EXPECT_EQ(authorityOf(role), authority) << role;
  }
  EXPECT_TRUE(mayVerify("lead") && mayVerify("reviewer"));
  EXPECT_FALSE(mayVerify("contributor"));
}

}  // namespace
}  // namespace quillpost::board
