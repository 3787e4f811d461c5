#pragma once

// A file of the tree as the house rules look at it: its lines, and what of them is code.

#include <cstddef>
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
  /// Whether the line is nothing but (a part of) a text literal.
  std::vector<bool> literal;

  bool isIn(std::string_view folder) const { return path.starts_with(folder); }
  bool isHeader() const { return path.ends_with(".h"); }
  bool isCode() const { return isHeader() || path.ends_with(".cpp"); }
};

/// Takes a text apart.
Source readSource(std::string path, std::string_view text);

/// Every text file of the repository at `root`, sorted by path. Leaves out what is built, installed
/// or hidden, except for the folder that says what a change must pass.
std::vector<Source> readTree(const std::string& root);

/// What a declaration declares.
enum class Kind { space, type, function, data, other };

/// A declaration outside function bodies.
struct Declaration {
  Kind kind = Kind::other;
  /// Its code up to the body or the semicolon, in one line.
  std::string head;
  /// Where the head begins, where the body opens (or the semicolon stands), where the body closes.
  /// Lines count from 0.
  std::size_t first = 0, open = 0, close = 0;
  bool hasBody = false;
  /// Whether only namespaces are around it.
  bool atNamespaceScope = false;
  /// Whether a namespace "detail" is around it, or it adds to a template that is declared
  /// elsewhere: nothing that a reader of a header calls.
  bool isDetail = false;
};

/// The declarations of a source in the order in which they end. An approximation that is right
/// about code as the formatter leaves it.
std::vector<Declaration> declarationsOf(const Source& source);

}  // namespace quillpost::tidy
