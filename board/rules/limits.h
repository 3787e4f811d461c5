#pragma once

// The texts on a board: how long they may be, in characters, as the tools' descriptions promise it.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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

/// Any text that is one line and has no limit of its own.
inline constexpr std::size_t lineLimit = 2000;

/// A brief or a goal, in bytes: more than anybody reads.
inline constexpr std::size_t briefLimit = std::size_t{256} << 10;

/// How many entries a list may have, and how long each may be: resources, ids, tags.
inline constexpr std::size_t listLimit = 64;
inline constexpr std::size_t entryLimit = 200;

/// What a reader takes for one character may be any number of bytes. So many at most count as one,
/// enough for every character in use.
inline constexpr std::size_t bytesOfCharacter = 32;

/// The first `limit` characters.
std::string cut(std::string_view whole, std::size_t limit);

/// The whole text, or its first `limit - 1` characters and an ellipsis when it has more than
/// `limit`.
std::string cutWithMark(std::string_view whole, std::size_t limit);

/// The text cut to `limit` characters. When that takes something away, `notice` is given a sentence
/// which says that `what` was cut.
std::string cutWithNotice(std::string_view whole, std::size_t limit, std::string_view what,
                          std::string& notice);

/// A line without breaks, cut to `lineLimit`, with a sentence in `notice` when that was needed.
std::string lineOf(std::string_view whole, std::string_view what, std::string& notice);

/// A brief cut to `briefLimit` at the end of a character, with such a sentence.
std::string briefText(std::string_view whole, std::string_view what, std::string& notice);

/// The first `listLimit` entries as lines of at most `entryLimit` characters, with such a sentence;
/// none when no list is given.
std::vector<std::string> entriesOf(const std::optional<std::vector<std::string>>& list,
                                   std::string_view what, std::string& notice);

/// The bytes of a text in an answer, about: quoting makes two of some characters and six of others.
std::size_t quotedSize(std::string_view words);

/// Adds a sentence to a notice.
void addSentence(std::string& notice, std::string_view sentence);

/// A text that says something, or nothing.
std::optional<std::string> unlessEmpty(std::string_view words);

/// Without white space at both ends and with a blank for each line break and tab between.
std::string oneLine(std::string_view whole);

}  // namespace quillpost::board
