// A reply from the app: decoded, put into words for every tool and as a wait's end, and read again
// where it is JSON. Bytes that do not begin as an object are taken for the values of a response
// instead, so that the words are reached without hitting upon valid JSON.

#include "base/text.h"
#include "base/unicode.h"
#include "fuzz/input.h"
#include "harness/dice.h"
#include "harness/result_shape.h"
#include "json/record.h"
#include "json/value.h"
#include "model/coding.h"
#include "render/result.h"
#include "render/wait_outcome.h"
#include "tools/tool_name.h"

#include <algorithm>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillpost::fuzz {
namespace {

/// Fills a record of any type with values from the bytes.
class Filler {
 public:
  explicit Filler(std::string_view bytes)
      : source_(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()) {}

  void fill(std::string& text) {
    const uint8_t choice = source_.byte();
    text = choice < testing::diceWords.size() ? testing::diceWords[choice]
                                              : source_.bytes(choice % 64);
    // Nothing else comes out of the decoder.
    if (!unicode::isValid(text)) text.clear();
  }
  void fill(int64_t& number) { number = source_.anyNumber().value_or(1); }
  void fill(bool& flag) { flag = source_.byte() % 2 == 1; }
  template <json::Named Word>
  void fill(Word& word) {
    const auto& rows = json::Names<Word>::rows;
    word = rows[source_.byte() % rows.size()].value;
  }
  template <class Value>
  void fill(std::optional<Value>& value) {
    if (source_.byte() % 2 == 1) fill(value.emplace());
  }
  template <class Element>
  void fill(std::vector<Element>& list) {
    for (int left = source_.byte() % 4; left > 0; --left) fill(list.emplace_back());
  }
  template <json::Record Value>
  void fill(Value& record) {
    json::forEachField<Value>([&](const auto& field) { fill(record.*field.member); });
  }

 private:
  Source source_;
};

/// What a reader gets of a result.
std::string plain(const json::EscapedText& text) {
  const std::optional<json::Tree> tree = json::parse("\"" + text.escaped() + "\"");
  require(tree && tree->is_string(), "not the inside of a JSON string");
  return std::string(tree->get_string().data(), tree->get_string().size());
}

void checkObject(const std::string& text) {
  const std::optional<json::Tree> tree = json::parse(text);
  require(tree && tree->is_object(), "not a JSON object");
}

void renderFor(std::span<const std::string_view> tools, const TeamworkResponse& response,
               const SeatState& state, Source numbers) {
  ResultRequest request;
  request.body = {.offset = numbers.anyNumber(), .limit = numbers.anyNumber()};
  request.log = {.offset = numbers.anyNumber(), .limit = numbers.anyNumber()};
  for (const std::string_view tool : tools) {
    request.tool = tool;
    request.includeAll = !request.includeAll;
    const std::string text = plain(composeResult(response, request, state));
    require(unicode::isValid(text), "not UTF-8");
    if (testing::isObjectResult(response)) checkObject(text);
  }
}

void renderAsWaitEnd(const TeamworkResponse& response, SeatState state) {
  absorbFeed(state, response);
  absorbWaitEnd(state);
  const std::vector<std::string> watching = {"t1"};
  const WaitOutcome outcome = {.feed = response.changes ? &*response.changes : nullptr,
                               .watching = watching,
                               .heldSeconds = 30,
                               .shortenedFrom = 60,
                               .timedOut = response.wakePending.value_or(false),
                               .cannotHoldLong = true};
  checkObject(plain(waitOutcome(outcome, state)));
}

/// The bytes as the inside of a string: the decoder undoes escapes itself, and must agree with the
/// parser of trees about which there are and what they mean.
void tryText(std::string_view inside) {
  const std::string text = text::cat("\"", inside, "\"");
  const std::optional<json::Tree> tree = json::parse(text);
  const std::optional<TeamworkResponse> response =
      decodeResponse(text::cat("{\"kind\":\"written\",\"message\":", text, "}"));
  const bool skipped =
      decodeResponse(text::cat("{\"kind\":\"written\",\"x\":{", text, ":[", text, "]}}"))
          .has_value();
  if (!tree) {
    // With a quote in it, the text may end early and be a part of a valid response.
    require(!(response || skipped) || inside.find('"') != std::string_view::npos,
            "a text that is none");
    return;
  }
  require(response && response->message && skipped, "a text that is not read");
  require(*response->message == std::string_view(tree->get_string()), "a text that is another");
}

/// Whether a number in the text may have a fraction.
bool mayHaveFraction(std::string_view text) {
  return text.find_first_of(".eE") != std::string_view::npos;
}

/// The decoder reads what the parser of trees reads, which has the last of two equal keys and
/// writes each number its own way. It alone knows a fraction that is too small for a double.
void tryRespelled(std::string_view reply, const std::optional<TeamworkResponse>& response) {
  const std::optional<json::Tree> tree = json::parse(reply);
  require(tree || !response, "a reply that is not JSON");
  if (!tree) return;
  std::string respelled;
  json::appendTree(respelled, *tree);
  require(decodeResponse(std::move(respelled)) == response || (!response && mayHaveFraction(reply)),
          "a reply that is another when it is respelled");
}

/// The bytes as a number: the decoder and the reading of arguments agree about integers.
void tryNumber(std::string_view number) {
  if (number.find_first_not_of("+-.0123456789eE") != std::string_view::npos) return;
  const std::optional<json::Tree> tree = json::parse(number);
  const std::optional<TeamworkResponse> response =
      decodeResponse(text::cat(R"({"kind":"written","rev":)", number, "}"));
  require(tree || !response, "a number that is none");
  if (!response) return;
  const int64_t rev = response->rev.value_or(0);
  const double* fraction = tree->if_double();
  require(fraction != nullptr ? *fraction == static_cast<double>(rev) : *tree == rev,
          "a number that is another");
}

void tryReply(std::string_view reply) {
  tryText(reply);
  tryNumber(reply);
  std::optional<TeamworkResponse> response = decodeResponse(std::string(reply));
  tryRespelled(reply, response);
  if (!response && reply.starts_with('{')) return;
  std::span<const std::string_view> tools = toolNames;
  if (!response) {
    Filler(reply).fill(response.emplace());
    // There are many more of these, so that all tools come without each of them going through all.
    tools = tools.subspan(reply.size() % tools.size(), 1);
  }
  const std::optional<std::string> again = encodeResponse(*response);
  require(again && decodeResponse(*again) == response, "a response that does not come back");
  SeatState state;
  state.waitSeq = static_cast<int64_t>(reply.size());
  state.clientProfile = clients.at(reply.size() % clients.size()).profile;
  renderAsWaitEnd(*response, state);
  absorbAnswer(state, *response);
  // The numbers come from the end of the reply, so that its beginning stays one.
  const std::string_view last =
      reply.substr(reply.size() - std::min<std::size_t>(40, reply.size()));
  renderFor(tools, *response, state,
            Source(reinterpret_cast<const uint8_t*>(last.data()), last.size()));
}

}  // namespace
}  // namespace quillpost::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  quillpost::fuzz::tryReply({reinterpret_cast<const char*>(bytes), size});
  return 0;
}
