// Lines from the harness: whatever they hold, every answer is one whole JSON line.

#include "fuzz/input.h"
#include "harness/fake_client.h"
#include "harness/fake_clock.h"
#include "harness/fake_environment.h"
#include "json/value.h"
#include "mcp/stdio_server.h"
#include "model/coding.h"
#include "tools/tool_name.h"

#include <chrono>
#include <string>
#include <string_view>
#include <utility>

namespace quillpost::fuzz {
namespace {

/// Takes every request, and answers so that every wait comes to an end.
class PlainApp final : public Bridge {
 public:
  explicit PlainApp(testing::FakeClock& clock) : clock_(clock) {}

  std::string currentToken() override { return "t0k"; }
  Exchange send(const TeamworkRequest& request) override {
    const std::optional<std::string> line = encodeRequest(request);
    require(line && decodeRequest(*line) == request, "a request that does not come back");
    clock_.advance(std::chrono::seconds(4));
    if (++sent_ % 5 == 4) return {};
    TeamworkResponse response;
    response.kind = request.method == pollChanges ? TeamworkResponse::Kind::changes
                                                  : TeamworkResponse::Kind::written;
    if (request.method == pollChanges) {
      response.changes.emplace().rev = sent_;
      response.changes->changed = sent_ % 2 == 0;
    }
    response.message = request.note;
    response.threadTag = request.taskID;
    return {.response = std::move(response)};
  }

 private:
  testing::FakeClock& clock_;
  int64_t sent_ = 0;
};

void checkMessage(const std::string& message) {
  require(message.find('\n') == message.size() - 1, "not one line");
  const std::optional<json::Tree> tree =
      json::parse(std::string_view(message).substr(0, message.size() - 1));
  require(tree && tree->is_object(), "not a JSON object");
}

void serve(std::string_view bytes, std::size_t pieceBytes) {
  testing::FakeClock clock;
  PlainApp app(clock);
  const testing::FakeEnvironment environment;
  testing::FakeInput input(bytes, pieceBytes);
  testing::FakeOutput output;
  TeamworkStdioServer server("S1", {clock, environment, app}, output);
  server.run(input);
  for (const std::string& message : output.messages) checkMessage(message);
}

}  // namespace
}  // namespace quillpost::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  const std::string_view whole(reinterpret_cast<const char*>(bytes), size);
  quillpost::fuzz::serve(whole, 1 + size % 97);
  return 0;
}
