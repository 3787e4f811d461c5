#include "transcript/played_app.h"

#include "harness/sections.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <optional>
#include <utility>

namespace quillpost::testing {
namespace {

constexpr std::string_view divider = " | ";

/// What follows `prefix`; nothing when the text does not begin with it.
std::optional<std::string_view> after(std::string_view text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return std::nullopt;
  return text.substr(prefix.size());
}

std::vector<std::string> piecesOf(std::string_view text) {
  std::vector<std::string> pieces;
  for (std::size_t end = text.find(divider); end != std::string_view::npos;
       end = text.find(divider)) {
    pieces.emplace_back(text.substr(0, end));
    text.remove_prefix(end + divider.size());
  }
  pieces.emplace_back(text);
  return pieces;
}

Behaviour behaviourOf(std::string_view answer) {
  if (answer == "(close)") return closeWithoutReply();
  if (const auto text = after(answer, "(cut) ")) return replyUnterminated(*text);
  if (const auto text = after(answer, "(terminator first) ")) return terminatorFirst(*text);
  if (const auto text = after(answer, "(bytes) ")) return replyByteByByte(*text);
  if (const auto text = after(answer, "(two) ")) {
    const std::vector<std::string> replies = piecesOf(*text);
    return twoReplies(replies.front(), replies.back());
  }
  if (const auto text = after(answer, "(pieces) ")) {
    std::vector<std::string> pieces = piecesOf(*text);
    pieces.emplace_back("\n");
    return replyInPieces(std::move(pieces));
  }
  return reply(answer);
}

/// The text between quotes after `key`; the transcripts hold no method that needs escapes.
std::string methodOf(std::string_view request) {
  constexpr std::string_view key = R"("method":")";
  const std::size_t start = request.find(key);
  if (start == std::string_view::npos) return "";
  const std::string_view rest = request.substr(start + key.size());
  return std::string(rest.substr(0, rest.find('"')));
}

std::string withoutHold(std::string request) {
  constexpr std::string_view key = R"("holdMs":)";
  const std::size_t found = request.find(key);
  if (found == std::string::npos) return request;
  const std::size_t start = found + key.size();
  const std::size_t end = std::min(request.find_first_not_of("0123456789", start), request.size());
  return request.replace(start, end - start, "…");
}

}  // namespace

PlayedApp::PlayedApp(std::string socketPath, std::string_view body) : app_(std::move(socketPath)) {
  for (const std::string& line : linesOf(body)) {
    const std::size_t colon = line.find(": ");
    if (colon == std::string::npos) {
      ADD_FAILURE() << "not \"method: answer\": " << line;
      continue;
    }
    const std::string_view answer = std::string_view(line).substr(colon + 2);
    waiting_[line.substr(0, colon)].push_back({line, behaviourOf(answer)});
  }
  app_.otherwise([this](const std::string& request) { return answer(request); });
}

Behaviour PlayedApp::answer(const std::string& request) {
  const std::lock_guard lock(mutex_);
  const auto found = waiting_.find(methodOf(request));
  if (found == waiting_.end()) return closeWithoutReply();
  std::deque<Line>& lines = found->second;
  if (lines.front().used && lines.size() > 1) lines.pop_front();
  lines.front().used = true;
  return lines.front().behaviour;
}

std::string PlayedApp::requests() const {
  std::string text;
  for (const Connection& connection : app_.connections()) {
    if (connection.received.empty()) continue;
    EXPECT_TRUE(connection.isOneLine()) << "not one line: " << connection.received;
    text += withoutHold(connection.received);
  }
  return text;
}

std::vector<std::string> PlayedApp::unusedLines() const {
  const std::lock_guard lock(mutex_);
  std::vector<std::string> unused;
  for (const auto& [method, lines] : waiting_) {
    for (const Line& line : lines) {
      if (!line.used) unused.push_back(line.text);
    }
  }
  return unused;
}

}  // namespace quillpost::testing
