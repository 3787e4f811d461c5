#include "qp/verb_reader.h"

#include "base/nearest.h"
#include "base/text.h"
#include "base/unicode.h"

#include <algorithm>
#include <utility>

namespace quillpost {
namespace {

constexpr std::string_view fileSuffix = "-file";
constexpr std::string_view noPrefix = "no-";

/// "name=value" taken apart; no value when there is no "=".
struct Spelled {
  std::string_view name;
  std::optional<std::string> value;
};

Spelled spelledOption(std::string_view word) {
  word.remove_prefix(2);
  const std::size_t equals = word.find('=');
  if (equals == std::string_view::npos) return {.name = word, .value = std::nullopt};
  return {.name = word.substr(0, equals), .value = std::string(word.substr(equals + 1))};
}

bool isYesOrNo(std::string_view word) { return word == "true" || word == "false"; }

/// One value with commas, as the elements between them.
std::vector<std::string> elementsOf(std::string_view value) {
  std::vector<std::string> elements;
  for (const std::string_view piece : text::split(value, ',')) {
    const std::string_view element = unicode::trimBlanks(piece);
    if (!element.empty()) elements.emplace_back(element);
  }
  return elements;
}

json::Tree listOf(const std::vector<std::string>& elements) {
  boost::json::array list;
  for (const std::string& element : elements) list.emplace_back(element);
  return list;
}

}  // namespace

bool VerbReader::refuse(std::string why) {
  why_ = std::move(why);
  return false;
}

bool VerbReader::read(std::span<const std::string> words) {
  bool takesOptions = true;
  for (std::size_t at = 0; at < words.size(); ++at) {
    const std::string& word = words[at];
    if (takesOptions && word == "--") {
      takesOptions = false;
    } else if (takesOptions && word == "-h") {
      wantsHelp_ = true;
    } else if (takesOptions && word.starts_with("--")) {
      if (!readOption(words, at)) return false;
    } else if (takesOptions && word.size() > 1 && word.starts_with('-')) {
      return refuse(text::cat("there is no option ", word,
                              R"(; a text that begins with "-" stands after "--")"));
    } else {
      words_.push_back(word);
    }
  }
  if (wantsHelp_) return true;
  return placeWords() && lacksNothing() && putAll();
}

bool VerbReader::readOption(std::span<const std::string> words, std::size_t& at) {
  Spelled option = spelledOption(words[at]);
  if (option.name == "help" && !option.value) return wantsHelp_ = true;
  if (option.name == "json" && isYesOrNo(option.value.value_or("true"))) {
    call_.asJson = option.value != "false";
    return true;
  }

  std::optional<OptionRow> row = findOption(tool(), option.name);
  if (!row && option.name.starts_with(noPrefix) && !option.value) {
    row = findOption(tool(), option.name.substr(noPrefix.size()));
    if (!row || row->property->type != Type::boolean) return readUnknown(option.name);
    return give(*row, "false", false);
  }
  const bool isFile = !row && option.name.ends_with(fileSuffix);
  if (isFile) {
    row = findOption(tool(), option.name.substr(0, option.name.size() - fileSuffix.size()));
    if (row && row->property->type != Type::string) row.reset();
  }
  if (!row) return readUnknown(option.name);

  const bool hasNext = at + 1 < words.size();
  if (row->property->type == Type::boolean) {
    if (!option.value && hasNext && isYesOrNo(words[at + 1])) option.value = words[++at];
    return give(*row, option.value.value_or("true"), false);
  }
  if (!option.value) {
    if (!hasNext || words[at + 1].starts_with("--"))
      return refuse(text::cat("--", option.name, " wants a value; one that begins with \"--\" is ",
                              "written --", option.name, "=VALUE"));
    option.value = words[++at];
  }
  return give(*row, *std::move(option.value), isFile);
}

bool VerbReader::readUnknown(std::string_view spelled) {
  const std::vector<std::string> options = optionsOf(tool());
  const std::vector<std::string_view> words(options.begin(), options.end());
  const std::string_view nearest = nearestWord(text::cat("--", spelled), words);
  return refuse(text::cat(tool().commandLine.name, " has no option --", spelled,
                          nearest.empty() ? "" : text::cat("; did you mean ", nearest, "?")));
}

bool VerbReader::give(const OptionRow& row, std::string value, bool isFile) {
  const auto same =
      std::ranges::find(given_, row.key, [](const Given& one) { return one.row.key; });
  if (same == given_.end()) {
    given_.push_back({.row = row, .values = {std::move(value)}, .isFile = isFile});
    return true;
  }
  if (row.property->type != Type::strings)
    return refuse(text::cat("--", kebab(row.property->name), " is given twice"));
  same->values.push_back(std::move(value));
  return true;
}

bool VerbReader::isGiven(std::string_view key) const {
  return std::ranges::any_of(given_, [&](const Given& one) { return one.row.key == key; });
}

/// The words fill what no option has filled: the positionals in their order, then the main text.
bool VerbReader::placeWords() {
  std::span<const std::string> rest = words_;
  std::vector<std::string_view> places(tool().commandLine.positionals.begin(),
                                       tool().commandLine.positionals.end());
  if (!tool().commandLine.mainText.empty()) places.push_back(tool().commandLine.mainText);
  for (const std::string_view name : places) {
    if (rest.empty()) return true;
    if (isGiven(name)) continue;
    const OptionRow row{findProperty(tool(), name), name};
    if (row.property->type == Type::strings) {
      for (const std::string& word : rest) give(row, word, false);
      return true;
    }
    give(row, rest.front(), false);
    rest = rest.subspan(1);
  }
  if (rest.empty()) return true;
  const std::string_view hint = toolForVerb(rest.front()) != nullptr
                                    ? "; the next verb stands after the word \"then\""
                                    : "; a text of several words stands in quotes";
  return refuse(
      text::cat(tool().commandLine.name, " has no place for \"", rest.front(), "\"", hint));
}

bool VerbReader::lacksNothing() {
  for (const Property& property : tool().properties)
    if (property.need == Need::required && !isGiven(property.name))
      return refuse(text::cat(tool().commandLine.name, " wants <", property.name, ">"));
  return true;
}

bool VerbReader::putAll() {
  return std::ranges::all_of(given_, [this](const Given& given) { return put(given); });
}

/// What a call may hold is the board's to judge; what only the command line reads is judged here.
bool VerbReader::isInItsSet(const Given& given) {
  const Property& property = *given.row.property;
  const std::string& value = given.values.front();
  if (given.row.isArgument || property.oneOf.empty() ||
      std::ranges::find(property.oneOf, value) != property.oneOf.end())
    return true;
  const std::string_view nearest = nearestWord(value, property.oneOf);
  return refuse(text::cat("--", kebab(property.name), " is one of ",
                          text::join(property.oneOf, ", "), ", not \"", value, "\"",
                          nearest.empty() ? "" : text::cat("; did you mean ", nearest, "?")));
}

bool VerbReader::put(const Given& given) {
  if (!isInItsSet(given)) return false;
  const OptionRow& row = given.row;
  json::TreeObject& object = row.isArgument ? call_.arguments : call_.options;
  const std::string& value = given.values.front();
  switch (row.property->type) {
    case Type::string:
      if (given.isFile || value == "-") {
        pending_.push_back({std::string(row.key),
                            given.isFile ? std::optional(value) : std::nullopt, row.isArgument});
      } else {
        object[row.key] = value;
      }
      return true;
    case Type::boolean:
      return putFlag(given);
    case Type::strings:
      object[row.key] = listOf(given.values.size() == 1 ? elementsOf(value) : given.values);
      return true;
    case Type::integer:
      break;
  }
  const std::optional<int64_t> number = text::parseInteger(value);
  if (!number)
    return refuse(
        text::cat("--", kebab(row.property->name), " wants a whole number, not \"", value, "\""));
  if (number < row.least)
    return refuse(text::cat("--", kebab(row.property->name), " wants a number of at least ",
                            row.least, ", not ", *number));
  object[row.key] = *number;
  return true;
}

bool VerbReader::putFlag(const Given& given) {
  const CommandLine& line = tool().commandLine;
  const std::string& value = given.values.front();
  const bool isYes = value == "true" || (!line.yes.empty() && value == line.yes);
  const bool isNo = value == "false" || (!line.no.empty() && value == line.no);
  if (!isYes && !isNo)
    return refuse(text::cat(given.row.property->name, " is ", line.yes.empty() ? "true" : line.yes,
                            " or ", line.no.empty() ? "false" : line.no, ", not \"", value, "\""));
  (given.row.isArgument ? call_.arguments : call_.options)[given.row.key] = isYes;
  return true;
}

}  // namespace quillpost
