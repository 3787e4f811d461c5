#pragma once

// A tool's reply as the agent reads it.

#include "calls/tool_reply.h"
#include "harness/plain_text.h"

#include <string>

namespace quillpost {

/// A reply with its text as a JSON reader gets it.
struct PlainReply {
  explicit PlainReply(const ToolReply& reply)
      : text(testing::plainText(reply.text)), threadTag(reply.threadTag), end(reply.end) {}

  std::string text;
  std::string threadTag;
  CallEnd end;
};

}  // namespace quillpost
