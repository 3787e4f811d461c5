#pragma once

// The texts on a board: how long they may be, in characters, as the tools' descriptions promise it.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quillpost::board {

inline constexpr std::size_t progressLimit = 240;
inline constexpr std::size_t reasonLimit = 240;
inline constexpr std::size_t summaryLimit = 280;
inline constexpr std::size_t questionLimit = 140;
inline constexpr std::size_t commentLimit = 2000;
inline constexpr std::size_t volleyLimit = 2000;
inline constexpr std::size_t noteLimit = 200;
inline constexpr std::size_t roleLimit = 120;
inline constexpr std::size_t messageLimit = 1000;
inline constexpr std::size_t helperNameLimit = 48;
inline constexpr std::size_t explanationLimit = 280;

/// The first `limit` characters.
std::string cut(std::string_view whole, std::size_t limit);

/// The whole text, or its first `limit - 1` characters and an ellipsis when it has more than
/// `limit`.
std::string cutWithMark(std::string_view whole, std::size_t limit);

/// The text cut to `limit` characters. When that takes something away, `notice` is given a sentence
/// which says that `what` was cut.
std::string cutWithNotice(std::string_view whole, std::size_t limit, std::string_view what,
                          std::string& notice);

/// A text that says something, or nothing.
std::optional<std::string> unlessEmpty(std::string_view words);

/// Without white space at both ends and with a blank for each line break between.
std::string oneLine(std::string_view whole);

}  // namespace quillpost::board
