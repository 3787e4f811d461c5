#include "board/verbs/methods.h"

#include "board/desk.h"
#include "tools/tool_name.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

TEST(Methods, OnlyAFewAreOpenToATerminalThatHasNotRegistered) {
  for (const std::string_view method : boardMethods) {
    Desk desk;
    desk.sit("CC4");
    const auto response = desk.ask("CC4", method);
    const bool isOpen = method == "register" || method == "unregister" || method == "list_tasks";
    EXPECT_EQ(response.kind != Desk::Kind::error, isOpen) << method;
    const std::string message = response.message.value_or("");
    EXPECT_TRUE(isOpen || message.find("Call register first") != std::string::npos) << message;
  }
}

TEST(Methods, AnUnknownOneIsRefusedByName) {
  EXPECT_TRUE(wasRefused(Desk().ask("AA2", "frobnicate"), "frobnicate"));
}

TEST(Methods, AMissingOrUnknownTaskIsRefusedInWords) {
  for (const char* method :
       {"read_task", "claim_task", "update_task", "complete_task", "reject_task", "delete_task",
        "release_task", "watch_task", "unwatch_task", "request_review", "verify_task",
        "comment_task", "request_release", "assign_task"}) {
    Desk desk;
    EXPECT_TRUE(wasRefused(desk.ask("AA2", method), "taskID")) << method;
    EXPECT_TRUE(wasRefused(desk.ask("AA2", method, Desk::on("t777777")), "t777777")) << method;
  }
}

TEST(Methods, WhatIsRefusedChangesNothing) {
  struct Row {
    const char* method;
    const char* members;
  };
  const Row rows[] = {
      {"set_goal", R"("name":"  ")"},
      {"set_charter", ""},
      {"add_task", R"("title":" ")"},
      {"add_task", R"("title":"x","to":"BB3")"},
      {"claim_task", R"("taskID":"t000001")"},
      {"update_task", R"("taskID":"t000001","note":"mine now")"},
      {"complete_task", R"("taskID":"t000001","summary":"x")"},
      {"reject_task", R"("taskID":"t000001")"},
      {"delete_task", R"("taskID":"t000001")"},
      {"release_task", R"("taskID":"t000001")"},
      {"comment_task", R"("taskID":"t000001","note":"  ")"},
      {"request_review", R"("taskID":"t000001")"},
      {"verify_task", R"("taskID":"t000001","approve":true)"},
      {"request_release", R"("taskID":"t000002")"},
      {"assign_task", R"("taskID":"t000002","to":"BB3")"},
      {"send_message", R"("to":"BB3","body":"x")"},
      {"open_discussion", ""},
      {"open_discussion", R"("body":"?","taskID":"t777777")"},
      {"reply_discussion", R"("discussionID":"d777777","body":"x")"},
      {"propose_goal_complete", ""},
      {"request_hands", R"("title":"x")"},
      {"suggest_helper", R"("command":"a; b","explanation":"x")"},
      {"stop_helper", R"("to":"KQ4")"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(text::cat(row.method, " ", row.members));
    Desk desk;
    desk.claim("BB3", desk.add("held"));
    desk.add("free");
    board::settle(desk.board);
    EXPECT_EQ(desk.ask("AA2", row.method, row.members).kind, Desk::Kind::error);
    forEachTable(desk.board, [](std::string_view kind, const auto& table) {
      EXPECT_TRUE(table.isSaved()) << kind;
    });
  }
}

}  // namespace
}  // namespace quillpost::board
