#include "tidy/rules.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>

// The words that the tree must not hold are put together from pieces here, so that this file does
// not hold them either.

namespace quillpost::tidy {
namespace {

/// Where a word is looked for.
enum class Where { code, everything };

/// A word that is not to be used, where, and what is used in its stead.
struct Ban {
  std::string_view word;
  Where where;
  std::string_view instead;
  std::array<std::string_view, 4> in;
  std::array<std::string_view, 2> exceptIn{};
};

constexpr std::string_view oneClock = "time comes in through base/clock.h";
constexpr std::string_view noSleep = "only a Clock sleeps";
constexpr std::string_view oneEnvironment = "variables come in through base/environment.h";
constexpr std::string_view oneOutput = "messages go out through an Output";
constexpr std::string_view noException = "absence is a value";
constexpr std::string_view oneThread = "the program has one thread";
constexpr std::string_view oneProgram = "the program starts no other";
constexpr std::string_view oneEnd = "only the main functions in entry/ end the process";
constexpr std::string_view finished = "finish it";
constexpr std::string_view canFail = "a test runs and can fail";
constexpr std::string_view nowhere = "nobody else's machine has this";
constexpr std::string_view itself = "say it as the system itself would";

// clang-format off
constexpr Ban bans[] = {
    {"system_clock",          Where::code, oneClock, {"src/", "board/rules/"}},
    {"steady_clock",          Where::code, oneClock, {"src/", "board/rules/"}, {"src/base/clock.h"}},
    {"high_resolution_clock", Where::code, oneClock, {"src/", "board/"}},
    {"clock_gettime",         Where::code, oneClock, {"src/", "board/"}},
    {"gettimeofday",          Where::code, oneClock, {"src/", "board/"}},
    {"sleep_for",             Where::code, noSleep, {"src/", "board/", "tests/"}, {"src/base/clock.h"}},
    {"sleep_until",           Where::code, noSleep, {"src/", "board/", "tests/"}},
    {"usleep",                Where::code, noSleep, {"src/", "board/", "tests/"}},
    {"nanosleep",             Where::code, noSleep, {"src/", "board/", "tests/"}},
    {"getenv",                Where::code, oneEnvironment, {"src/", "board/", "tests/"}, {"src/base/environment.h"}},
    {"setenv",                Where::code, oneEnvironment, {"src/", "board/"}},
    {"environ",               Where::code, oneEnvironment, {"src/", "board/", "tests/"}, {"src/base/environment.h"}},
    {"std::cout",             Where::code, oneOutput, {"src/"}},
    {"std::cerr",             Where::code, oneOutput, {"src/"}},
    {"std::clog",             Where::code, oneOutput, {"src/", "board/"}},
    {"printf",                Where::code, oneOutput, {"src/"}},
    {"puts",                  Where::code, oneOutput, {"src/"}},
    {"putchar",               Where::code, oneOutput, {"src/"}},
    {"using namespace std;",  Where::code, "names of the library say so", {""}},
    {"throw",                 Where::code, noException, {"src/", "board/"}},
    {"dynamic_cast",          Where::code, "the type is known where it matters", {"src/", "board/"}},
    {"typeid",                Where::code, "the type is known where it matters", {"src/", "board/"}},
    {"std::thread",           Where::code, oneThread, {"src/"}},
    {"std::mutex",            Where::code, oneThread, {"src/"}},
    {"std::async",            Where::code, oneThread, {"src/"}},
    {"fork",                  Where::code, oneProgram, {"src/"}},
    {"execve",                Where::code, oneProgram, {"src/"}},
    {"posix_spawn",           Where::code, oneProgram, {"src/"}},
    {"popen",                 Where::code, oneProgram, {"src/"}},
    {"std::system",           Where::code, oneProgram, {"src/"}},
    {"exit",                  Where::code, oneEnd, {"src/"}, {"src/entry/main.cpp"}},
    {"_exit",                 Where::code, oneEnd, {"src/"}, {"src/entry/main.cpp", "src/entry/qp_main.cpp"}},
    {"abort",                 Where::code, oneEnd, {"src/"}},
    {"TO" "DO",               Where::everything, finished, {"src/", "board/", "tests/", "scripts/"}},
    {"FIX" "ME",              Where::everything, finished, {"src/", "board/", "tests/", "scripts/"}},
    {"XX" "X",                Where::everything, finished, {"src/", "board/", "tests/", "scripts/"}},
    {"HA" "CK",               Where::everything, finished, {"src/", "board/", "tests/", "scripts/"}},
    {"GTEST" "_SKIP",         Where::everything, canFail, {"tests/"}},
    {"DISABLED" "_",          Where::everything, canFail, {"tests/"}},
    {"SUCC" "EED()",          Where::everything, canFail, {"tests/"}},
    {"EXPECT_TRUE" "(true)",  Where::everything, canFail, {"tests/"}},
    {"/wo" "rk/",             Where::everything, nowhere, {""}},
    {"/fa" "rm/",             Where::everything, nowhere, {""}},
    {"../sha" "red/",         Where::everything, nowhere, {""}},
    {"registr" "y.npm",       Where::everything, nowhere, {""}},
    {"deb" ".debian",         Where::everything, nowhere, {""}},
    {"\"resol" "ved\": \"http", Where::everything, nowhere, {""}},
    {"spec" ".md",            Where::everything, itself, {""}},
    {"spec" "ification.md",   Where::everything, itself, {""}},
    {"the spec" "ification",  Where::everything, itself, {""}},
    {"this spec" "ification", Where::everything, itself, {""}},
    {"our spec" "ification",  Where::everything, itself, {""}},
    {"RUL" "INGS",            Where::everything, itself, {""}},
    {"HOU" "SE.md",           Where::everything, itself, {""}},
    {"ANCH" "ORS.md",         Where::everything, itself, {""}},
};
// clang-format on

bool isWordByte(char byte) {
  return std::isalnum(static_cast<unsigned char>(byte)) != 0 || byte == '_';
}

/// Whether the word stands in the line, not as a part of a longer one.
bool holdsWord(std::string_view line, std::string_view word) {
  for (std::size_t at = line.find(word); at != std::string_view::npos;
       at = line.find(word, at + 1)) {
    const std::size_t end = at + word.size();
    const bool beginsWord = !isWordByte(word.front()) || at == 0 || !isWordByte(line[at - 1]);
    const bool endsWord = !isWordByte(word.back()) || word.back() == '_' || end == line.size() ||
                          !isWordByte(line[end]);
    if (beginsWord && endsWord) return true;
  }
  return false;
}

bool isAnyOf(const Source& source, std::span<const std::string_view> folders, bool emptyCounts) {
  const auto fits = [&](std::string_view folder) { return !folder.empty() && source.isIn(folder); };
  return std::ranges::any_of(folders, fits) || (emptyCounts && folders.front().empty());
}

/// A chapter number, such as only the plans of a system have.
bool namesChapter(std::string_view line) {
  constexpr std::string_view digits = "12345";
  const auto isDigit = [&](std::size_t at) {
    return at < line.size() && digits.find(line[at]) != std::string_view::npos;
  };
  for (const std::string_view word : {"Pa"
                                      "rt ",
                                      "Pa"
                                      "rts "}) {
    for (std::size_t at = line.find(word); at != std::string_view::npos;
         at = line.find(word, at + 1)) {
      const std::size_t number = at + word.size();
      if (isDigit(number) && line.substr(number + 1).starts_with('.') && isDigit(number + 2)) {
        return true;
      }
    }
  }
  return false;
}

}  // namespace

Findings checkWords(const Tree& tree) {
  Findings findings;
  for (const Source& source : tree) {
    for (const Ban& ban : bans) {
      if (!isAnyOf(source, ban.in, true) || isAnyOf(source, ban.exceptIn, false)) continue;
      if (ban.where == Where::code && !source.isCode()) continue;
      const std::vector<std::string>& lines = ban.where == Where::code ? source.code : source.lines;
      for (std::size_t i = 0; i < lines.size(); ++i) {
        if (holdsWord(lines[i], ban.word)) {
          findings.push_back({source.path, i + 1,
                              "\"" + std::string(ban.word) + "\": " + std::string(ban.instead)});
        }
      }
    }
    for (std::size_t i = 0; i < source.lines.size(); ++i) {
      if (namesChapter(source.lines[i])) {
        findings.push_back({source.path, i + 1, "a chapter number: " + std::string(itself)});
      }
    }
  }
  return findings;
}

}  // namespace quillpost::tidy
