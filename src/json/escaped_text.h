#pragma once

// The text of a result, on its way into a JSON string.

#include <cstddef>
#include <string>
#include <string_view>

namespace quillpost::json {

class Array;
class Object;

/// Kept escaped from the start, so that a long result is escaped while it is written and never gone
/// through again. JSON may be part of it, as text, and is known from the sentences when the text
/// begins with it.
class EscapedText {
 public:
  EscapedText() = default;
  explicit EscapedText(std::string_view plain) { append(plain); }

  /// Appends a plain text, which must be UTF-8.
  EscapedText& append(std::string_view plain);

  /// The inside of the JSON string.
  const std::string& escaped() const { return escaped_; }

  /// The JSON that the text begins with, as JSON; empty when it begins with a sentence.
  std::string json() const;
  /// What follows that JSON, as a reader gets it: the whole text when it begins with a sentence.
  std::string sentences() const;

 private:
  friend class Object;
  friend class Array;

  std::string escaped_;
  // Where the first plain text stands. What is before it was written by an object or array, which
  // are the only others that write here.
  std::size_t sentencesBegin_ = std::string::npos;
};

}  // namespace quillpost::json
