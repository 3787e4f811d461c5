#pragma once

// JSON-RPC 2.0 messages as they go to the client, one line each.

#include "base/output.h"
#include "json/value.h"
#include "json/writer.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace quillpost {

/// The two JSON-RPC errors that exist here; every other failure is words in a tool's result.
inline constexpr int64_t methodNotFound = -32601;
inline constexpr int64_t invalidParams = -32602;

/// Writes messages to the client. Each is put together in one buffer and written at once. An `id`
/// goes back as it came; a null pointer stands for a message that had none, and goes as `null`.
class JsonRpcWriter {
 public:
  explicit JsonRpcWriter(Output& output) : output_(output) {}

  /// Answers with a result that is JSON text already.
  void sendResult(const json::Tree* id, std::string_view resultJson);

  /// Answers a tool call with one text: `text` and then `ending`, a plain text that may be empty.
  void sendText(const json::Tree* id, const json::EscapedText& text, std::string_view ending);

  /// Answers with an error.
  void sendError(const json::Tree* id, int64_t code, std::string_view message);

  /// Tells how far a running call has come. False when nobody reads any more.
  bool sendProgress(const json::Tree& progressToken, int64_t progress, std::string_view message);

  /// False once a message could not be written: the client has gone.
  bool connected() const { return connected_; }

 private:
  // A buffer that a huge result has grown beyond this is given back instead of kept.
  static constexpr std::size_t keptBytes = std::size_t{1} << 20;

  void addId(const json::Tree* id);
  void writeMessage();

  Output& output_;
  std::string message_;
  bool connected_ = true;
};

}  // namespace quillpost
