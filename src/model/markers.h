#pragma once

// The markers that ride at the beginning of log lines and of questions to the person.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost {

/// Begins a log line that carries the task's running summary.
inline constexpr std::string_view gistMarker = "[[gist]] ";

/// Begins a log line that is a hand-off note.
inline constexpr std::string_view forMarker = "[[for]] ";

/// A view into `text` without white space at both ends and without gist markers at its beginning,
/// so that a summary that is stored never carries its marker twice. May be empty.
std::string_view cleanSummary(std::string_view text);

/// How the person is asked, besides the question itself. An optional text that is there counts as
/// given even when it is empty.
struct AskMarker {
  /// "decision", "approval", "secret", "review" or "respond"; "respond" when only the rest is
  /// given.
  std::optional<std::string> kind = std::nullopt;
  /// What the person may answer; the first 4 are kept, each up to 80 characters.
  std::vector<std::string> options = {};
  /// The exact name of the secret to be filled in.
  std::optional<std::string> secretName = std::nullopt;
  /// What is to be looked at.
  std::optional<std::string> artifact = std::nullopt;
  /// What follows from the answer, kept up to 200 characters.
  std::optional<std::string> consequence = std::nullopt;
};

/// The question behind its ask marker. The question alone when nothing else was given, or when a
/// text that was given is not UTF-8.
std::string askMarker(const AskMarker& ask, std::string_view question);

}  // namespace quillpost
