#pragma once

// Vocabularies: the words on the wire for the values of an enumeration. One list, read in both
// directions.

#include <optional>
#include <string_view>
#include <type_traits>

namespace quillpost::json {

/// The vocabulary of an enumeration, specialised beside it with a constexpr array `rows` of
/// Name<Kind>: read in both directions.
template <class Kind>
struct Names;

/// One word of a vocabulary.
template <class Kind>
struct Name {
  Kind value;
  std::string_view word;
};

/// An enumeration with a vocabulary.
template <class T>
concept Named = std::is_enum_v<T> && requires {
  Names<T>::rows;
};

/// Whether no value and no word stands twice in a vocabulary.
template <class Rows>
constexpr bool allDifferent(const Rows& rows) {
  for (const auto& one : rows) {
    int same = 0;
    for (const auto& other : rows) same += (one.value == other.value || one.word == other.word);
    if (same != 1) return false;
  }
  return true;
}

/// The word for a value; empty for a value outside the vocabulary.
template <Named Kind>
constexpr std::string_view wordFor(Kind value) {
  for (const Name<Kind>& row : Names<Kind>::rows)
    if (row.value == value) return row.word;
  return {};
}

/// The value for a word, matched exactly; nothing for an unknown word.
template <Named Kind>
constexpr std::optional<Kind> fromWord(std::string_view word) {
  for (const Name<Kind>& row : Names<Kind>::rows)
    if (row.word == word) return row.value;
  return std::nullopt;
}

}  // namespace quillpost::json
