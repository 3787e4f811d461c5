#include "board/page/guard.h"

#include "base/text.h"

#include <algorithm>

namespace quillpost::board {

namespace {

constexpr std::string_view scheme = "Bearer ";

/// Whether a name and port are this page's. Another name that leads here is one that a stranger's
/// page was given, so that the browser takes it for that page's own.
bool isOurs(std::string_view host, int port) {
  constexpr std::string_view names[] = {"127.0.0.1", "localhost", "[::1]"};
  return std::ranges::any_of(
      names, [&](std::string_view name) { return host == text::cat(name, ":", port); });
}

bool isJson(std::string_view contentType) {
  const std::string type = text::lowered(contentType.substr(0, contentType.find(';')));
  return type == "application/json";
}

}  // namespace

bool isSameSecret(std::string_view given, std::string_view secret) {
  // How long a key is, is no secret; an empty one opens nothing.
  if (given.size() != secret.size() || secret.empty()) return false;
  unsigned difference = 0;
  for (std::size_t i = 0; i < secret.size(); ++i) {
    difference |= static_cast<unsigned>(static_cast<unsigned char>(given[i])) ^
                  static_cast<unsigned>(static_cast<unsigned char>(secret[i]));
  }
  return difference == 0;
}

std::optional<Refusal> refusalOf(const Knock& knock, const Doorway& doorway) {
  if (!isOurs(knock.host, doorway.port)) return Refusal{421, "this is no page of that name"};
  const bool isReading = knock.method == "GET" || knock.method == "HEAD";
  if (!isReading && knock.method != "POST") return Refusal{405, "only GET and POST are known here"};
  if (knock.isForFile && isReading) return std::nullopt;
  const std::string_view given = knock.authorization;
  if (!given.starts_with(scheme) || !isSameSecret(given.substr(scheme.size()), doorway.key)) {
    return Refusal{401, "that is not the key of this run"};
  }
  const bool isFromElsewhere = !knock.fetchSite.empty() && knock.fetchSite != "same-origin";
  if (isReading) {
    return isFromElsewhere ? std::optional(Refusal{403, "another page asks"}) : std::nullopt;
  }
  if (knock.origin != text::cat("http://", knock.host) || isFromElsewhere) {
    return Refusal{403, "another page asks"};
  }
  if (knock.isPacked || !isJson(knock.contentType)) return Refusal{415, "only plain JSON is taken"};
  return std::nullopt;
}

}  // namespace quillpost::board
