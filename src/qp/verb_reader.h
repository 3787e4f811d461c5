#pragma once

// The words of one verb as the arguments of its call.

#include "qp/line.h"
#include "qp/options.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost {

/// A text that stands elsewhere and is read when the whole line is known to make sense.
struct PendingText {
  std::string key;
  /// Nothing for standard input.
  std::optional<std::string> path;
  bool isArgument = true;
};

/// Reads the words after one verb.
class VerbReader {
 public:
  explicit VerbReader(const Tool& tool) { call_.tool = &tool; }

  /// False when they make no sense; `why` then says so.
  bool read(std::span<const std::string> words);

  const std::string& why() const { return why_; }
  /// What they ask for, but for its pending texts.
  Call& call() { return call_; }
  const std::vector<PendingText>& pending() const { return pending_; }
  /// Whether the verb is to be explained rather than carried out.
  bool wantsHelp() const { return wantsHelp_; }

 private:
  /// What one option was given, in order.
  struct Given {
    OptionRow row;
    std::vector<std::string> values;
    bool isFile = false;
  };

  const Tool& tool() const { return *call_.tool; }
  bool refuse(std::string why);
  bool readOption(std::span<const std::string> words, std::size_t& at);
  bool readUnknown(std::string_view spelled);
  bool give(const OptionRow& row, std::string value, bool isFile);
  bool isGiven(std::string_view key) const;
  bool placeWords();
  bool lacksNothing();
  bool putAll();
  bool isInItsSet(const Given& given);
  bool put(const Given& given);
  bool putFlag(const Given& given);

  Call call_;
  std::vector<std::string> words_;
  std::vector<Given> given_;
  std::vector<PendingText> pending_;
  std::string why_;
  bool wantsHelp_ = false;
};

}  // namespace quillpost
