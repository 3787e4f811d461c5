#pragma once

// A file of the tree as the house rules look at it: its lines, and what of them is code.

#include <string>
#include <string_view>
#include <vector>

namespace quillpost::tidy {

/// One file. The vectors have one entry for each line.
struct Source {
  /// From the root of the repository, with "/".
  std::string path;
  std::vector<std::string> lines;
  /// The lines with comments, the insides of literals and preprocessor directives blanked out, each
  /// as long as the line itself.
  std::vector<std::string> code;
  /// Whether the line is kept from the formatter, as tables are.
  std::vector<bool> fenced;

  bool isIn(std::string_view folder) const { return path.starts_with(folder); }
  bool isHeader() const { return path.ends_with(".h"); }
  bool isCode() const { return isHeader() || path.ends_with(".cpp"); }
  bool isTest() const { return path.ends_with("_test.cpp"); }
  /// Whether it is a part of a program that is installed.
  bool isProgram() const { return isCode() && (isIn("src/") || isIn("board/")); }
};

/// Takes a text apart.
Source readSource(std::string path, std::string_view text);

/// Every text file of the repository at `root`, sorted by path. Leaves out what is built, installed
/// or hidden, except for the folder that says what a change must pass.
std::vector<Source> readTree(const std::string& root);

/// Whether the byte may stand in a name.
bool isWordByte(char byte);

}  // namespace quillpost::tidy
