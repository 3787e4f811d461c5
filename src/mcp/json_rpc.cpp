#include "mcp/json_rpc.h"

#include "json/writer.h"

namespace quillpost {
namespace {

// Room for all that stands around a tool's text, but for a very long id.
constexpr std::size_t aroundText = 256;

constexpr std::string_view envelope = R"({"jsonrpc":"2.0",)";

}  // namespace

void JsonRpcWriter::sendResult(const json::Tree* id, std::string_view resultJson) {
  message_.append(envelope).append(R"("result":)").append(resultJson);
  addId(id);
  writeMessage();
}

void JsonRpcWriter::sendText(const json::Tree* id, const json::EscapedText& text,
                             std::string_view ending) {
  // Written around the text rather than built from objects: a long result is copied once.
  message_.reserve(text.escaped().size() + aroundText);
  message_.append(envelope).append(R"("result":{"content":[{"type":"text","text":")");
  message_.append(text.escaped());
  json::appendEscaped(message_, ending);
  message_.append(R"("}],"isError":false})");
  addId(id);
  writeMessage();
}

void JsonRpcWriter::sendError(const json::Tree* id, int64_t code, std::string_view message) {
  message_.append(envelope).append(R"("error":)");
  json::Object(message_).add("code", code).add("message", message);
  addId(id);
  writeMessage();
}

bool JsonRpcWriter::sendProgress(const json::Tree& progressToken, int64_t progress,
                                 std::string_view message) {
  message_.append(envelope).append(R"("method":"notifications/progress","params":)");
  std::string token;
  json::appendTree(token, progressToken);
  json::Object(message_)
      .addJson("progressToken", token)
      .add("progress", progress)
      .add("message", message);
  message_.push_back('}');
  writeMessage();
  return connected_;
}

void JsonRpcWriter::addId(const json::Tree* id) {
  message_.append(R"(,"id":)");
  if (id == nullptr) {
    message_.append("null");
  } else {
    json::appendTree(message_, *id);
  }
  message_.push_back('}');
}

void JsonRpcWriter::writeMessage() {
  message_.push_back('\n');
  if (connected_) connected_ = output_.write(message_);
  if (message_.capacity() > keptBytes) {
    std::string().swap(message_);
  } else {
    message_.clear();
  }
}

}  // namespace quillpost
