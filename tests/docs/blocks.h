#pragma once

// The pieces that generated pages are made of.

#include <map>
#include <string>
#include <string_view>

namespace quillpost::docs {

/// The text of each generated block, by its name.
using Blocks = std::map<std::string, std::string, std::less<>>;

/// The page with each of its blocks replaced; a block that is not known or has no end stays.
std::string filled(std::string_view page, const Blocks& blocks);

/// How often a block of this name begins on the page.
int countOf(std::string_view page, std::string_view block);

/// A cell of a table: one line, its bars escaped.
std::string cell(std::string_view content);

/// The text in backquotes.
std::string code(std::string_view content);

/// What the comment above a member of a struct says, as one line; empty when there is none or the
/// struct has no such member.
std::string memberComment(std::string_view source, std::string_view structName,
                          std::string_view member);

}  // namespace quillpost::docs
