#pragma once

// A tool's reply as the agent reads it.

#include <string>

#include "harness/plain_text.h"
#include "server/seat.h"

namespace quillpost {

/// A reply with its text as a JSON reader gets it.
struct PlainReply {
  explicit PlainReply(const ToolReply& reply)
      : text(testing::plainText(reply.text)), threadTag(reply.threadTag) {}

  std::string text;
  std::string threadTag;
};

}  // namespace quillpost
