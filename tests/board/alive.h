#pragma once

// Whether a process of any parent's is there.

#include "base/files.h"
#include "base/text.h"

#include <csignal>
#include <cstdint>
#include <string>

namespace quillpost::board {

/// Whether a process is there that has not ended.
inline bool isThere(int64_t pid) {
  // It may end between the opening of this and the reading.
  const std::string stat =
      files::readSmallText(text::cat("/proc/", pid, "/stat")).value_or(std::string());
  const std::size_t name = stat.rfind(") ");
  if (name != std::string::npos) return stat[name + 2] != 'Z';
  return ::kill(static_cast<pid_t>(pid), 0) == 0;
}

}  // namespace quillpost::board
