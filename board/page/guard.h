#pragma once

// Who is let in: what a request over HTTP must bring before anything is done for it. Any program
// and any page in any browser on this machine can send one.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quillpost::board {

/// The largest body that is read, in bytes: four briefs of the greatest length.
inline constexpr std::size_t bodyLimit = std::size_t{1} << 20;

/// What a page is served as.
struct Doorway {
  /// What every request but those for the page's own files carries; new in each run.
  std::string key;
  int port = 0;
};

/// A request as far as it decides about being let in; a header that did not come is empty.
struct Knock {
  std::string_view method;
  std::string_view host;
  std::string_view origin;
  /// The header Sec-Fetch-Site, which not every browser sends.
  std::string_view fetchSite;
  std::string_view contentType;
  std::string_view authorization;
  /// Whether the body comes packed or in chunks, of which nobody can say how large it becomes.
  bool isPacked = false;
  /// Whether it asks for one of the page's own files, which are no secret.
  bool isForFile = false;
};

/// Why somebody is not let in.
struct Refusal {
  /// The status of HTTP.
  int status = 0;
  std::string_view why;
};

/// Why the request is refused; nothing when it is let in.
std::optional<Refusal> refusalOf(const Knock& knock, const Doorway& doorway);

/// Whether both texts are the same. Takes as long wherever they differ, so that nobody can find a
/// key piece by piece.
bool isSameSecret(std::string_view given, std::string_view secret);

/// A header that every answer carries.
struct Header {
  const char* name;
  const char* value;
};

// clang-format off
/// What a browser may do with the page: run and fetch what comes from here and nothing else, and show
/// it in no frame. No text becomes code or markup, even by mistake.
inline constexpr Header headersOfAll[] = {
    {"Content-Security-Policy",
     "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; connect-src 'self'; "
     "worker-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'; "
     "require-trusted-types-for 'script'; trusted-types quillpost"},
    {"X-Frame-Options",              "DENY"},
    {"X-Content-Type-Options",       "nosniff"},
    {"Referrer-Policy",              "no-referrer"},
    {"Cross-Origin-Opener-Policy",   "same-origin"},
    {"Cross-Origin-Resource-Policy", "same-origin"},
    {"Cache-Control",                "no-store"},
};
// clang-format on

}  // namespace quillpost::board
