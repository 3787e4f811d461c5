#include "json/decoder.h"

#include "base/unicode.h"
#include "json/escapes.h"
#include "json/numbers.h"

#include <boost/json/basic_parser_impl.hpp>

#include <array>
#include <exception>

namespace quillpost::json {
namespace {

using boost::system::error_code;

/// Turns the parser's events into values of records. Every event answers whether what has come so
/// far is JSON; a false answer ends the reading. A value of a wrong type does not: when the same
/// key comes again, only that counts.
class RecordReader {
 public:
  // What the parser asks of a handler: how large things may be. The text itself is the limit.
  static constexpr std::size_t max_array_size = static_cast<std::size_t>(-1);
  static constexpr std::size_t max_object_size = static_cast<std::size_t>(-1);
  static constexpr std::size_t max_string_size = static_cast<std::size_t>(-1);
  static constexpr std::size_t max_key_size = static_cast<std::size_t>(-1);

  RecordReader(const Shape& shape, void* target) : pending_{target, &shape} {}

  bool on_document_begin(error_code& /*ec*/) { return true; }
  bool on_document_end(error_code& ec) const { return !isTopWrong_ || notJson(ec); }

  bool on_object_begin(error_code& ec) {
    if (skipping()) return skipInto();
    const Slot slot = takeSlot();
    if (slot.shape->rows.empty()) return markWrong() && skipInto();
    return push({slot.target, slot.shape}, ec);
  }
  bool on_object_end(std::size_t /*members*/, error_code& /*ec*/) {
    if (skipping()) return skipOut();
    const Frame& frame = frames_[--depth_];
    const bool isWhole = (frame.seen & frame.shape->needed) == frame.shape->needed;
    return (isWhole && frame.wrong == 0) || markWrong();
  }
  bool on_array_begin(error_code& ec) {
    if (skipping()) return skipInto();
    const Slot slot = takeSlot();
    if (slot.shape->grow == nullptr) return markWrong() && skipInto();
    return push({slot.target, slot.shape}, ec);
  }
  bool on_array_end(std::size_t /*elements*/, error_code& /*ec*/) {
    if (skipping()) return skipOut();
    return frames_[--depth_].wrong == 0 || markWrong();
  }

  // Strings come whole, because the whole text is there and their escapes are disguised.
  bool on_key_part(std::string_view /*part*/, std::size_t /*size*/, error_code& ec) {
    return notJson(ec);
  }
  bool on_key(std::string_view inside, std::size_t /*size*/, error_code& ec) {
    // No row's key has an escape, so that most keys are found before they are searched for one.
    if (skippedDepth_ == 0 && openRow(frames_[depth_ - 1], inside)) return true;
    skipNext_ = skippedDepth_ == 0;
    if (!hasDisguisedEscapes(inside)) return true;
    const std::optional<std::string_view> key = meaningOf(inside);
    if (!key) return notJson(ec);
    if (skipNext_) skipNext_ = !openRow(frames_[depth_ - 1], *key);
    return true;
  }

  bool on_string_part(std::string_view /*part*/, std::size_t /*size*/, error_code& ec) {
    return notJson(ec);
  }
  bool on_string(std::string_view inside, std::size_t /*size*/, error_code& ec) {
    const std::optional<std::string_view> text = meaningOf(inside);
    if (!text) return notJson(ec);
    if (skipping()) return skipValue();
    const Slot slot = takeSlot();
    const bool taken = slot.shape->takeText != nullptr && slot.shape->takeText(slot.target, *text);
    return taken || markWrong();
  }

  bool on_number_part(std::string_view /*part*/, error_code& /*ec*/) { return true; }
  bool on_int64(int64_t number, std::string_view /*text*/, error_code& /*ec*/) {
    return skipping() ? skipValue() : takeInteger(number);
  }
  bool on_uint64(uint64_t /*number*/, std::string_view /*text*/, error_code& /*ec*/) {
    // The parser gives unsigned numbers only above the signed range, which no field can hold.
    return skipping() ? skipValue() : takeInteger(std::nullopt);
  }
  bool on_double(double /*number*/, std::string_view text, error_code& ec) {
    if (!nearestDouble(text)) return notJson(ec);
    if (skipping()) return skipValue();
    const std::optional<Whole> whole = wholeByDigits(text);
    return takeInteger(whole && whole->isIntegral ? whole->asInteger() : std::nullopt);
  }
  bool on_bool(bool flag, error_code& /*ec*/) {
    if (skipping()) return skipValue();
    const Slot slot = takeSlot();
    if (slot.shape->takeFlag == nullptr) return markWrong();
    slot.shape->takeFlag(slot.target, flag);
    return true;
  }
  bool on_null(error_code& /*ec*/) {
    if (skipping()) return skipValue();
    if (pending_.row == nullptr) {
      takeSlot();
      return markWrong();
    }
    // As if the key were missing: an open row has not touched its member yet.
    forget(frames_[depth_ - 1], pending_.bit);
    pending_ = {};
    return true;
  }
  bool on_comment_part(std::string_view /*part*/, error_code& /*ec*/) { return true; }
  bool on_comment(std::string_view /*last*/, error_code& /*ec*/) { return true; }

 private:
  /// A record or list that is being filled.
  struct Frame {
    void* target = nullptr;
    const Shape* shape = nullptr;
    // One bit a row; a list has the first for all its elements.
    uint64_t seen = 0;
    uint64_t wrong = 0;
    std::size_t current = 0;   // the row or element that the last value was for
    std::size_t expected = 0;  // the row after the last one met
  };
  /// Where the next value goes. Without a row it is the top of the text.
  struct Pending {
    void* target = nullptr;
    const Shape* shape = nullptr;
    const Row* row = nullptr;
    std::size_t bit = 0;
  };
  struct Slot {
    void* target;
    const Shape* shape;
  };

  // Records nest eight deep at most (a response's feed's tasks' discussions' volleys); a shape
  // never contains itself, so this cannot run out.
  static constexpr std::size_t frameLimit = 16;

  bool push(const Frame& frame, error_code& ec) {
    if (depth_ == frameLimit) return notJson(ec);
    frames_[depth_++] = frame;
    return true;
  }

  /// Makes the row for a key the pending one; false when there is none.
  bool openRow(Frame& frame, std::string_view key) {
    const std::span<const Row> rows = frame.shape->rows;
    // A sender writes every record's keys in one order of its own, nearly always the table's: the
    // search starts at the row after the last one.
    for (std::size_t tried = 0, at = frame.expected; tried < rows.size(); ++tried, ++at) {
      if (at >= rows.size()) at = 0;
      if (rows[at].key != key) continue;
      frame.expected = at + 1;
      pending_ = {frame.target, rows[at].shape, &rows[at], at};
      return true;
    }
    return false;
  }

  /// The place for the value that has come; its row counts as seen from here on.
  Slot takeSlot() {
    if (pending_.row != nullptr) {
      Frame& frame = frames_[depth_ - 1];
      forget(frame, pending_.bit);
      frame.seen |= uint64_t{1} << pending_.bit;
      frame.current = pending_.bit;
      const Slot slot = {pending_.row->open(frame.target), pending_.shape};
      pending_ = {};
      return slot;
    }
    if (depth_ == 0) return {pending_.target, pending_.shape};
    const Frame& list = frames_[depth_ - 1];
    return {list.shape->grow(list.target), list.shape->element};
  }

  /// Makes a member what it was before its key came; of two equal keys the last one counts.
  static void forget(Frame& frame, std::size_t row) {
    const uint64_t bit = uint64_t{1} << row;
    if ((frame.seen & bit) == 0) return;
    frame.shape->restore(frame.target, row);
    frame.seen &= ~bit;
    frame.wrong &= ~bit;
  }

  /// Takes a number; nothing stands for one that is no 64-bit integer.
  bool takeInteger(std::optional<int64_t> number) {
    const Slot slot = takeSlot();
    if (slot.shape->takeInteger == nullptr || !number) return markWrong();
    slot.shape->takeInteger(slot.target, *number);
    return true;
  }

  /// Notes that the value for the last slot, or one inside it, has a wrong type.
  bool markWrong() {
    if (depth_ == 0) {
      isTopWrong_ = true;
    } else {
      Frame& frame = frames_[depth_ - 1];
      frame.wrong |= uint64_t{1} << frame.current;
    }
    return true;
  }

  bool skipping() const { return skipNext_ || skippedDepth_ > 0; }
  bool skipValue() {
    if (skippedDepth_ == 0) skipNext_ = false;
    return true;
  }
  bool skipInto() {
    skipNext_ = false;
    ++skippedDepth_;
    return true;
  }
  bool skipOut() {
    --skippedDepth_;
    return true;
  }

  /// What the inside of a string stands for, until the next one comes; nothing when an escape in it
  /// is not JSON's.
  std::optional<std::string_view> meaningOf(std::string_view inside) {
    if (!hasDisguisedEscapes(inside)) return inside;
    meaning_.clear();
    return appendUndisguised(meaning_, inside) ? std::optional<std::string_view>(meaning_)
                                               : std::nullopt;
  }

  static bool notJson(error_code& ec) {
    ec = boost::json::error::exception;
    return false;
  }

  std::array<Frame, frameLimit> frames_;
  std::size_t depth_ = 0;
  Pending pending_;
  bool isTopWrong_ = false;
  bool skipNext_ = false;
  std::size_t skippedDepth_ = 0;
  std::string meaning_;
};

}  // namespace

namespace detail {

bool decodeObject(std::string text, const Shape& shape, void* target) try {
  // Checked here in one go: the parser would judge a string byte by byte from its first character
  // beyond ASCII, which took 8 % of the time of a long reply.
  if (!unicode::isValid(text)) return false;
  disguiseEscapes(text);
  boost::json::parse_options options;
  options.max_depth = depthLimit;
  options.allow_invalid_utf8 = true;
  boost::json::basic_parser<RecordReader> parser(options, shape, target);
  error_code ec;
  const std::size_t read = parser.write_some(false, text.data(), text.size(), ec);
  return !ec && parser.done() && read == text.size();
} catch (const std::exception&) {
  return false;  // out of memory
}

}  // namespace detail
}  // namespace quillpost::json
