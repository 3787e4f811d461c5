#pragma once

// A board on which a helper is allowed, and agents that ask for it.

#include "board/desk.h"
#include "board/rules/runs.h"
#include "json/writer.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillpost::board {

/// A desk whose person allows the helper "scout".
class HelpedDesk : public Desk {
 public:
  HelpedDesk() {
    EXPECT_EQ(allow("scout").kind, Kind::written);
    settle();
  }

  /// Allows a helper that runs `scout -p` in /d.
  TeamworkResponse allow(std::string_view name) {
    Helper helper;
    helper.id = name;
    helper.explanation = "reads";
    helper.words = {"scout", "-p"};
    helper.directory = "/d";
    helper.variables = {"PATH=/bin"};
    TeamworkRequest request = requestOf("", personHelperAllow);
    request.body = json::encode(helper);
    return carryOutForPerson(board, request, at);
  }

  TeamworkResponse ask(std::string_view handle, std::string_view method,
                       std::string_view members = "") {
    return Desk::ask(handle, method, members);
  }

  /// Asks for a helper for a new task; gives its handle, or nothing when it is refused.
  std::string hands(std::string_view asker, std::string_view title = "work") {
    const std::size_t before = board.runs.size();
    ask(asker, "request_hands", text::cat(R"("title":")", title, "\""));
    if (board.runs.size() == before) return {};
    const HelperRun* latest = nullptr;
    for (const auto& [id, run] : board.runs)
      if (board.tasks.find(run.taskID) == &std::prev(board.tasks.end())->second) latest = &run;
    return latest->handle;
  }

  const HelperRun& run(std::string_view handle) const { return *runAt(board, handle); }
  std::string stateOf(std::string_view handle) const {
    return std::string(json::wordFor(run(handle).state));
  }

  /// The request of a helper, whose session is not made of its handle.
  TeamworkResponse asHelper(std::string_view handle, std::string_view method,
                            std::string_view members = "") {
    const std::string session = run(handle).id;
    const TeamworkRequest request = requestOf(session, method, members);
    return carryOut({board, request, *board.seats.touch(session), at, random});
  }

  /// A helper that has registered and claimed its task.
  std::string working(std::string_view asker) {
    std::string handle = hands(asker);
    asHelper(handle, "register");
    EXPECT_EQ(asHelper(handle, "claim_task", on(run(handle).taskID)).kind, Kind::written);
    settle();
    return handle;
  }

  /// What the wakes of an agent say.
  std::vector<std::string> told(std::string_view handle) const {
    std::vector<std::string> words;
    for (const Wake* wake : wakesOf(board, seat(handle))) words.push_back(wake->summary);
    return words;
  }

  Random random = [engine = std::mt19937(11)]() mutable { return static_cast<uint32_t>(engine()); };
};

}  // namespace quillpost::board
