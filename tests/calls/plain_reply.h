#pragma once

// A tool's reply as the agent reads it.

#include "calls/seat.h"
#include "harness/plain_text.h"

#include <string>

namespace quillpost {

/// A reply with its text as a JSON reader gets it.
struct PlainReply {
  explicit PlainReply(const ToolReply& reply)
      : text(testing::plainText(reply.text)), threadTag(reply.threadTag) {}

  std::string text;
  std::string threadTag;
};

}  // namespace quillpost
