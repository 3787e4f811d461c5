#pragma once

// What a call gives whoever made it: words for an agent, and how it ended for a program.

#include "json/writer.h"
#include "render/texts/replies.h"

#include <string>

namespace quillpost {

/// How a call ended. Every ending has its words in the reply; a caller that has statuses instead
/// goes by this.
enum class CallEnd {
  /// The board did what was asked, or showed it.
  answered,
  /// The board answered that it would not.
  refused,
  /// Nothing was sent: the question to the person is longer than it may be.
  refusedUnsent,
  /// Nothing was sent: this terminal has no seat on any board.
  outsideThread,
  /// No try brought an answer.
  unreachable,
  /// A wait brought news.
  moved,
  /// A wait's hold ran out.
  timedOut,
  /// The board says that nothing can ever happen on it.
  nothingToWaitOn,
  /// Whoever waited has gone.
  callerGone,
};

/// The reply to one call.
struct ToolReply {
  /// The words. Those of a result that is JSON begin with it, and `text.json()` is that part.
  json::EscapedText text = {};
  /// The Thread that answered; empty when none did.
  std::string threadTag = {};
  CallEnd end = CallEnd::answered;
};

/// What follows the words of a reply: the line that names the Thread, after a blank one; empty when
/// no Thread answered.
inline std::string threadEnding(const ToolReply& reply) {
  return reply.threadTag.empty() ? std::string() : texts::threadLine(reply.threadTag);
}

}  // namespace quillpost
