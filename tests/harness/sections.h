#pragma once

// Files made of named sections, such as transcripts: first a few lines of prose that say what the
// file guards, then sections that each begin with a line "-- name --".

#include <string>
#include <string_view>
#include <vector>

namespace quillpost::testing {

/// One section.
struct Section {
  /// What stands between the dashes. Names may repeat.
  std::string name;
  /// The lines below the header, each with its line feed; empty when there are none.
  std::string body;

  bool operator==(const Section&) const = default;
};

/// A whole file.
struct SectionFile {
  /// What stands above the first section; the whole text when there is no section.
  std::string prose;
  /// In the order of the file.
  std::vector<Section> sections;

  /// The body of the first section of that name; empty when there is none.
  std::string_view body(std::string_view name) const;

  bool operator==(const SectionFile&) const = default;
};

/// Reads the text of a file. Every text is readable; a last line without its line feed gets one.
SectionFile parseSections(std::string_view text);

/// The text that reads back as `file`.
std::string renderSections(const SectionFile& file);

/// The lines of a body, without their line feeds.
std::vector<std::string> linesOf(std::string_view body);

}  // namespace quillpost::testing
