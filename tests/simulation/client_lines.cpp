#include "simulation/client_lines.h"

#include "base/text.h"
#include "json/value.h"
#include "json/writer.h"
#include "tools/tool_name.h"
#include "tools/tools.h"

#include <array>
#include <set>

namespace quillpost::simulation {
namespace {

using testing::Dice;
using text::cat;

std::string inQuotes(std::string_view text) {
  std::string out;
  json::appendString(out, text);
  return out;
}

std::string anyText(Dice& dice) {
  std::string text;
  dice.fill(text);
  // Now and then long enough for every limit on the length of a text.
  if (dice.oneIn(8)) {
    const std::string piece = text.empty() ? "ä" : text;
    while (text.size() < 300) text += piece;
  }
  return text;
}

std::string anyNumber(Dice& dice) {
  constexpr std::array<std::string_view, 12> odd = {
      "0.5",  "-0.0", "1e3", "3.0", "18446744073709551615", "9223372036854775808", "1e18",
      "1e19", "-7",   "45",  "300", "-9223372036854775809"};
  if (dice.flip()) return std::string(dice.oneOf(odd));
  return cat(dice.oneOf(testing::diceNumbers));
}

/// The names of all arguments of all tools, each once.
const std::vector<std::string_view>& argumentNames() {
  static const std::vector<std::string_view> names = [] {
    std::set<std::string_view> all = {"_meta", "note", "name", "parkReason"};
    for (const Tool& tool : tools)
      for (const Property& property : tool.properties) all.insert(property.name);
    return std::vector<std::string_view>(all.begin(), all.end());
  }();
  return names;
}

/// A list of members under construction, each key once.
class Members {
 public:
  void add(std::string_view key, std::string_view json) {
    text_ += cat(text_.empty() ? "" : ",", inQuotes(key), ":", json);
  }
  std::string object() const { return cat("{", text_, "}"); }

 private:
  std::string text_;
};

std::string anyArguments(Dice& dice) {
  Members members;
  const std::size_t oneIn = 1 + dice.below(12);
  for (const std::string_view name : argumentNames()) {
    if (!dice.oneIn(oneIn)) continue;
    // Flags and lists matter for some names only, texts and numbers for most.
    members.add(name, dice.oneIn(3) ? anyJson(dice) : inQuotes(anyText(dice)));
  }
  return members.object();
}

/// A whole number as JSON or as a text; absent, or of a wrong kind, it counts as absent.
std::optional<int64_t> addInteger(Members& members, Dice& dice, std::string_view name,
                                  int64_t number) {
  switch (dice.below(6)) {
    case 0:
      return std::nullopt;
    case 1:
      members.add(name, dice.flip() ? "true" : inQuotes(cat(number, "s")));
      return std::nullopt;
    case 2:
      members.add(name, inQuotes(cat(number)));
      return number;
    default:
      members.add(name, cat(number));
      return number;
  }
}

bool addFlag(Members& members, Dice& dice, std::string_view name) {
  constexpr std::array<std::string_view, 4> values = {"true", "false", "1", "\"true\""};
  if (dice.flip()) return false;
  const std::string_view value = dice.oneOf(values);
  members.add(name, value);
  return value == "true";
}

AskedWait addWaitArguments(Members& members, Dice& dice) {
  constexpr std::array<int64_t, 10> holds = {0, 1, 3, 12, 29, 30, 31, 100, 4000, -5};
  AskedWait asked;
  asked.timeoutSeconds =
      addInteger(members, dice, "timeoutSeconds",
                 dice.oneIn(6) ? dice.oneOf(testing::diceNumbers) : dice.oneOf(holds));
  if (dice.oneIn(4)) {
    asked.sinceRev = addInteger(members, dice, "sinceRev", dice.oneOf(testing::diceNumbers));
  }
  if (dice.oneIn(3)) {
    std::string list;
    for (std::size_t left = dice.below(70); left > 0; --left) {
      const std::string id = cat("t", left);
      if (dice.oneIn(5)) list += "3,";
      list += cat(inQuotes(id), left > 1 ? "," : "");
      if (asked.taskIDs.size() < 64) asked.taskIDs.push_back(id);
    }
    members.add("taskIDs", cat("[", list, "]"));
  }
  asked.wakeOnClaims = addFlag(members, dice, "wakeOnClaims");
  asked.standDown = addFlag(members, dice, "standDown");
  if (dice.oneIn(3)) {
    asked.parkReason = anyText(dice);
    members.add("parkReason", inQuotes(*asked.parkReason));
  }
  return asked;
}

/// The message around the parameters; an id of any kind stands in most.
std::string message(Dice& dice, std::string_view method, const std::optional<std::string>& params) {
  Members members;
  const bool idLast = dice.flip();
  const std::optional<std::string> id =
      dice.oneIn(10) ? std::nullopt
                     : std::optional(dice.flip() ? cat(dice.below(1000)) : anyJson(dice));
  if (dice.flip()) members.add("jsonrpc", "\"2.0\"");
  if (id && !idLast) members.add("id", *id);
  members.add("method", inQuotes(method));
  if (params) members.add("params", *params);
  if (id && idLast) members.add("id", *id);
  return members.object();
}

ClientLine waitLine(Dice& dice) {
  ClientLine line;
  Members arguments;
  line.wait = addWaitArguments(arguments, dice);
  Members params;
  params.add("name", inQuotes(dice.oneIn(4) ? waitForTasks : waitForChanges));
  params.add("arguments", arguments.object());
  if (dice.flip()) params.add("_meta", cat("{\"progressToken\":", anyJson(dice), "}"));
  line.text = message(dice, "tools/call", params.object());
  return line;
}

/// An update that asks the person something, in time or at too much length.
std::string blockerLine(Dice& dice) {
  Members arguments;
  arguments.add("blocked", "true");
  for (const std::string_view name : {"blockerQuestion", "progress", "summary", "blockerKind"})
    if (dice.flip()) arguments.add(name, inQuotes(anyText(dice)));
  if (dice.flip()) arguments.add("blockerOptions", anyJson(dice));
  Members params;
  params.add("name", inQuotes("update_task"));
  params.add("arguments", arguments.object());
  return message(dice, "tools/call", params.object());
}

std::string callLine(Dice& dice) {
  Members params;
  params.add("name", dice.oneIn(20) ? anyJson(dice) : inQuotes(dice.oneOf(boardMethods)));
  if (!dice.oneIn(8)) params.add("arguments", dice.oneIn(10) ? anyJson(dice) : anyArguments(dice));
  return message(dice, "tools/call", params.object());
}

std::string initializeLine(Dice& dice) {
  constexpr std::array<std::string_view, 8> names = {"claude-code", "Codex", "agy",   "Antigravity",
                                                     "CURSOR",      "zed",   "codex", ""};
  const std::string name = dice.oneIn(5) ? anyJson(dice) : inQuotes(dice.oneOf(names));
  const std::string client = dice.oneIn(8) ? anyJson(dice) : cat("{\"name\":", name, "}");
  const std::string params = dice.oneIn(8) ? anyJson(dice) : cat("{\"clientInfo\":", client, "}");
  return message(dice, "initialize",
                 dice.oneIn(10) ? std::nullopt : std::optional<std::string>(params));
}

std::string noise(Dice& dice) {
  constexpr std::array<std::string_view, 10> lines = {
      "",     "\r",     " ",         "not json",          "[1,2]",
      "null", "\"id\"", "{\"id\":1", "{\"id\":\"\xff\"}", "\xef\xbb\xbf{\"id\":1}"};
  if (dice.oneIn(40)) return std::string(2000, '[');
  return std::string(dice.oneOf(lines));
}

/// The line with some bytes changed, lost or repeated; never a line feed.
void damage(std::string& line, Dice& dice) {
  for (std::size_t left = 1 + dice.below(3); left > 0 && !line.empty(); --left) {
    const std::size_t at = dice.below(line.size());
    char byte = static_cast<char>(dice.below(256));
    if (byte == '\n') byte = '\r';
    switch (dice.below(3)) {
      case 0:
        line[at] = byte;
        break;
      case 1:
        line.resize(at);
        break;
      default:
        line.insert(at, 1, byte);
        break;
    }
  }
}

}  // namespace

std::string anyJson(Dice& dice, int depth) {
  constexpr std::array<std::string_view, 3> words = {"true", "false", "null"};
  switch (dice.below(depth > 0 ? 8 : 6)) {
    case 0:
      return std::string(dice.oneOf(words));
    case 1:
    case 2:
      return anyNumber(dice);
    case 6: {
      std::string list;
      for (std::size_t left = dice.below(4); left > 0; --left)
        list += cat(anyJson(dice, depth - 1), left > 1 ? "," : "");
      return cat("[", list, "]");
    }
    case 7: {
      Members members;
      for (const std::string_view key : {"a", "name", "taskID"})
        if (dice.flip()) members.add(key, anyJson(dice, depth - 1));
      return members.object();
    }
    default:
      return inQuotes(anyText(dice));
  }
}

ClientLine anyLine(Dice& dice) {
  ClientLine line;
  switch (dice.below(20)) {
    case 0:
      line.text = noise(dice);
      return line;
    case 1:
      line.text = message(dice, "tools/list", std::nullopt);
      break;
    case 2:
      line.text = message(dice, "ping", anyJson(dice));
      break;
    case 3:
      line.text = message(dice, dice.flip() ? "notifications/cancelled" : anyText(dice), "{}");
      break;
    case 4:
      line.text = initializeLine(dice);
      break;
    case 5:
    case 6:
    case 7:
      line = waitLine(dice);
      break;
    default:
      line.text = dice.oneIn(12) ? blockerLine(dice) : callLine(dice);
      break;
  }
  if (dice.oneIn(20)) {
    damage(line.text, dice);
    line.wait.reset();
  }
  return line;
}

std::optional<Expectation> expectationOf(const ClientLine& line) {
  using Kind = Expectation::Kind;
  const std::optional<json::Tree> tree = json::parse(line.text);
  const json::TreeObject* object = tree ? tree->if_object() : nullptr;
  if (object == nullptr) return std::nullopt;
  const auto textOf = [](const json::Tree* value) {
    std::string text;
    if (value == nullptr) return std::string("null");
    json::appendTree(text, *value);
    return text;
  };
  const json::Tree* id = json::find(*object, "id");
  const std::string method(json::findText(*object, "method").value_or(""));
  Expectation expected = {.kind = Kind::unknownMethod,
                          .id = textOf(id),
                          .name = method,
                          .progressToken = std::nullopt,
                          .wait = line.wait};
  if (method == "initialize") expected.kind = Kind::initialize;
  if (method == "ping") expected.kind = Kind::ping;
  if (method == "tools/list") expected.kind = Kind::toolsList;
  if (method == "tools/call") {
    static const json::TreeObject none;
    const json::TreeObject* params = json::findObject(*object, "params");
    if (params == nullptr) params = &none;
    expected.name = std::string(json::findText(*params, "name").value_or(""));
    expected.kind = isBoardMethod(expected.name) ? Kind::call : Kind::unknownTool;
    if (expected.name == waitForChanges || expected.name == waitForTasks)
      expected.kind = Kind::wait;
    const json::TreeObject* meta = json::findObject(*params, "_meta");
    const json::Tree* token = meta == nullptr ? nullptr : json::find(*meta, "progressToken");
    if (token != nullptr) expected.progressToken = textOf(token);
  }
  const bool isNotification =
      method == "notifications/initialized" || method == "notifications/cancelled";
  if (isNotification || (expected.kind == Kind::unknownMethod && id == nullptr))
    return std::nullopt;
  return expected;
}

}  // namespace quillpost::simulation
