#include "tidy/rules.h"

#include <algorithm>
#include <array>

// The reminders that the tree must not hold are put together from pieces here, so that this file
// does not hold them either.

namespace quillpost::tidy {
namespace {

/// Words that are not to be used, where, and what is to be done in their stead. An array is as long
/// as its last text that is not empty.
struct Ban {
  std::array<std::string_view, 12> words;
  std::string_view instead;
  std::array<std::string_view, 4> in;
  std::array<std::string_view, 2> exceptIn{};
  /// Whether comments and literals count too, and files that are no code.
  bool isEverywhere = false;
};

// clang-format off
constexpr Ban bans[] = {
    {{"steady_clock"}, "time comes in through base/clock.h", {"src/", "board/"}, {"src/base/clock.h"}},
    {{"system_clock"}, "time comes in through base/clock.h, and the board's date in person/serve.cpp", {"src/", "board/"}, {"board/person/serve.cpp"}},
    {{"high_resolution_clock", "clock_gettime", "gettimeofday"}, "time comes in through base/clock.h", {"src/", "board/"}},
    {{"sleep_for", "sleep_until", "usleep", "nanosleep"}, "only a Clock sleeps", {"src/", "board/", "tests/"}, {"src/base/clock.h"}},
    {{"getenv", "environ"}, "variables come in through base/environment.h", {"src/", "board/", "tests/"}, {"src/base/environment.h"}},
    {{"setenv", "putenv"}, "the environment is only read", {"src/", "board/"}},
    {{"std::cout", "std::cerr", "std::clog", "printf", "puts", "putchar"}, "messages go out through an Output", {"src/"}},
    {{"throw"}, "absence is a value", {"src/", "board/"}},
    {{"dynamic_cast", "typeid"}, "the type is known where it matters", {"src/", "board/"}},
    {{"std::thread", "std::mutex", "std::async"}, "the program has one thread", {"src/"}},
    {{"fork", "vfork", "execl", "execle", "execlp", "execv", "execve", "execvp", "posix_spawn", "posix_spawnp", "popen", "std::system"}, "the program starts no other", {"src/"}},
    {{"exit", "_exit", "abort"}, "only the main functions in entry/ end the process", {"src/"}, {"src/entry/main.cpp", "src/entry/qp_main.cpp"}},
    {{"TO" "DO", "FIX" "ME", "XX" "X", "HA" "CK"}, "finish it", {"src/", "board/", "tests/", "scripts/"}, {}, true},
    {{"GTEST" "_SKIP", "DISABLED" "_", "SUCC" "EED()", "EXPECT_TRUE" "(true)"}, "a test runs and can fail", {"tests/"}, {}, true},
};
// clang-format on

/// Whether the word stands in the line, not as a part of a longer one.
bool holdsWord(std::string_view line, std::string_view word) {
  for (std::size_t at = line.find(word); at != std::string_view::npos;
       at = line.find(word, at + 1)) {
    const std::size_t end = at + word.size();
    const bool beginsWord = at == 0 || !isWordByte(line[at - 1]);
    const bool endsWord = !isWordByte(word.back()) || word.back() == '_' || end == line.size() ||
                          !isWordByte(line[end]);
    if (beginsWord && endsWord) return true;
  }
  return false;
}

bool isInAnyOf(const Source& source, std::span<const std::string_view> places) {
  return std::ranges::any_of(
      places, [&](std::string_view place) { return !place.empty() && source.isIn(place); });
}

}  // namespace

Findings checkWords(const Tree& tree) {
  Findings findings;
  for (const Source& source : tree) {
    for (const Ban& ban : bans) {
      if (!isInAnyOf(source, ban.in) || isInAnyOf(source, ban.exceptIn)) continue;
      const std::vector<std::string>& lines = ban.isEverywhere ? source.lines : source.code;
      for (std::size_t i = 0; i < lines.size(); ++i) {
        for (const std::string_view word : ban.words) {
          if (word.empty() || !holdsWord(lines[i], word)) continue;
          findings.push_back(
              {source.path, i + 1, "\"" + std::string(word) + "\": " + std::string(ban.instead)});
        }
      }
    }
  }
  return findings;
}

}  // namespace quillpost::tidy
