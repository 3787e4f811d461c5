#pragma once

// Values of any type by chance, the same ones for the same seed on every machine.

#include "json/record.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost::testing {

/// The texts that chance puts together: words with a meaning on the board, and characters that are
/// hard on whoever cuts, escapes or counts them.
inline constexpr std::array<std::string_view, 24> diceWords = {"",
                                                               "on",
                                                               "off",
                                                               "KQ3",
                                                               "kq3",
                                                               "#a3f9",
                                                               "claimed",
                                                               "done",
                                                               "error",
                                                               "exited",
                                                               "terminal",
                                                               "working",
                                                               "taskWatched",
                                                               "claimExpired",
                                                               "youWereTagged",
                                                               "[[gist]] g",
                                                               "[[for]] f",
                                                               "a\nb\n",
                                                               "\"\\/\b\f\r\t",
                                                               "\x01\x1f\x7f",
                                                               "\u2028 \u2029\u00a0",
                                                               "e\u0301\U0001F469\u200D\U0001F4BB",
                                                               "{{x}} (thread T-1)",
                                                               "\r\n\n"};

/// The numbers that chance picks: limits, and what stands beside a limit of the program.
inline constexpr std::array<int64_t, 9> diceNumbers = {
    std::numeric_limits<int64_t>::min(), -61, -1, 0, 1, 2, 59, 2001,
    std::numeric_limits<int64_t>::max()};

/// Fills values of any type that a record holds.
class Dice {
 public:
  /// How much is filled.
  struct Plenty {
    /// An optional member has a value once in so many times.
    std::size_t optionalOneIn = 2;
    /// The most elements of a list.
    std::size_t longestList = 3;
  };

  explicit Dice(uint64_t seed) : engine_(seed) {}
  Dice(uint64_t seed, const Plenty& plenty) : engine_(seed), plenty_(plenty) {}

  /// A number from 0 up to, not including, `limit`, which is at least 1.
  std::size_t below(std::size_t limit) { return static_cast<std::size_t>(engine_() % limit); }
  bool flip() { return below(2) == 1; }
  /// True once in so many times.
  bool oneIn(std::size_t times) { return below(times) == 0; }
  /// One of the elements of an array, which has some.
  template <class Elements>
  const auto& oneOf(const Elements& elements) {
    return elements[below(elements.size())];
  }

  void fill(std::string& text) {
    text = oneOf(diceWords);
    if (oneIn(4)) text += oneOf(diceWords);
  }
  void fill(int64_t& number) { number = oneOf(diceNumbers); }
  void fill(bool& flag) { flag = flip(); }
  template <json::Named Word>
  void fill(Word& word) {
    word = oneOf(json::Names<Word>::rows).value;
  }
  template <class Value>
  void fill(std::optional<Value>& value) {
    value.reset();
    if (oneIn(plenty_.optionalOneIn)) fill(value.emplace());
  }
  template <class Element>
  void fill(std::vector<Element>& list) {
    list.clear();
    for (std::size_t left = below(plenty_.longestList + 1); left > 0; --left)
      fill(list.emplace_back());
  }
  template <json::Record Value>
  void fill(Value& record) {
    json::forEachField<Value>([&](const auto& field) { fill(record.*field.member); });
  }

 private:
  std::mt19937_64 engine_;
  Plenty plenty_;
};

}  // namespace quillpost::testing
