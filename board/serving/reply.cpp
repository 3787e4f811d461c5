#include "board/serving/reply.h"

#include "model/coding.h"

#include <string_view>
#include <utility>

namespace quillpost::board {

namespace {

constexpr std::string_view tooLarge =
    "The answer to this would be larger than a client takes, so it was not sent; what was asked "
    "for "
    "was done. Ask for less at a time: read_task for one task, wait_for_changes with `taskIDs` for "
    "those tasks.";

// A text that is not UTF-8 cannot have come in a request, so that an answer can always be written;
// should one not after all, the client is told at least that.
constexpr std::string_view unwritable =
    R"({"kind":"error","message":"The answer could not be written."})";

}  // namespace

std::string replyLine(Answer& answer) {
  std::optional<std::string> line = encodeSparsely(answer.response);
  if (line && line->size() > replyLimit) {
    TeamworkResponse less;
    less.kind = TeamworkResponse::Kind::error;
    less.message = tooLarge;
    less.threadTag = answer.response.threadTag;
    answer.response = std::move(less);
    if (answer.receipt) answer.receipt->delivery = {};
    line = encodeSparsely(answer.response);
  }
  std::string bytes = line ? *std::move(line) : std::string(unwritable);
  bytes += '\n';
  return bytes;
}

}  // namespace quillpost::board
