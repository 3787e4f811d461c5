#pragma once

// The command line of quillpost-board.

#include "board/rules/leases.h"
#include "model/request.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace quillpost::board {

/// What `--help` prints.
std::string_view usage();

/// What was asked for.
struct Options {
  /// "serve", "help", or a command of the person's.
  std::string command = "serve";
  /// The scan directory; empty for the default.
  std::string directory;
  /// The file of boards; empty for the default.
  std::string database;
  /// Which board of the directory; when serving, "board" if it is not given.
  std::optional<std::string> suffix;
  int64_t leaseMs = defaultLeaseMs;
  /// For a command of the person's: what it asks of the board.
  TeamworkRequest request;
};

/// Reads the arguments, the program's name not among them. Nothing when they make no sense: then
/// `why` says so in words.
std::optional<Options> readOptions(std::span<const std::string> arguments, std::string& why);

}  // namespace quillpost::board
