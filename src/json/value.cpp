#include "json/value.h"

#include "json/decoder.h"
#include "json/numbers.h"

#include <boost/json/basic_parser_impl.hpp>
#include <boost/json/serializer.hpp>
#include <boost/json/value_stack.hpp>

#include <array>
#include <cmath>
#include <cstdint>
#include <exception>
#include <utility>

namespace quillpost::json {
namespace {

using boost::system::error_code;

/// Builds the tree as the library's own parser does, except for numbers with a fraction or an
/// exponent: they are rounded by their digits, and one that is too large for a double ends it,
/// since infinity is not JSON when written back.
class TreeBuilder {
 public:
  static constexpr std::size_t max_array_size = boost::json::array::max_size();
  static constexpr std::size_t max_object_size = TreeObject::max_size();
  static constexpr std::size_t max_string_size = boost::json::string::max_size();
  static constexpr std::size_t max_key_size = boost::json::string::max_size();

  TreeBuilder(boost::json::storage_ptr storage, unsigned char* scratch, std::size_t scratchSize)
      : stack_({}, scratch, scratchSize) {
    stack_.reset(std::move(storage));
  }

  Tree release() { return stack_.release(); }

  bool on_document_begin(error_code& /*ec*/) { return true; }
  bool on_document_end(error_code& /*ec*/) { return true; }
  bool on_object_begin(error_code& /*ec*/) { return true; }
  bool on_object_end(std::size_t members, error_code& /*ec*/) {
    stack_.push_object(members);
    return true;
  }
  bool on_array_begin(error_code& /*ec*/) { return true; }
  bool on_array_end(std::size_t elements, error_code& /*ec*/) {
    stack_.push_array(elements);
    return true;
  }
  bool on_key_part(std::string_view part, std::size_t /*size*/, error_code& /*ec*/) {
    stack_.push_chars(part);
    return true;
  }
  bool on_key(std::string_view last, std::size_t /*size*/, error_code& /*ec*/) {
    stack_.push_key(last);
    return true;
  }
  bool on_string_part(std::string_view part, std::size_t /*size*/, error_code& /*ec*/) {
    stack_.push_chars(part);
    return true;
  }
  bool on_string(std::string_view last, std::size_t /*size*/, error_code& /*ec*/) {
    stack_.push_string(last);
    return true;
  }
  bool on_number_part(std::string_view /*part*/, error_code& /*ec*/) { return true; }
  bool on_int64(int64_t number, std::string_view /*text*/, error_code& /*ec*/) {
    stack_.push_int64(number);
    return true;
  }
  bool on_uint64(uint64_t number, std::string_view /*text*/, error_code& /*ec*/) {
    stack_.push_uint64(number);
    return true;
  }
  bool on_double(double /*number*/, std::string_view text, error_code& ec) {
    const std::optional<double> nearest = nearestDouble(text);
    if (!nearest) {
      ec = boost::json::error::exponent_overflow;
      return false;
    }
    pushNumber(*nearest, wholeByDigits(text));
    return true;
  }
  bool on_bool(bool flag, error_code& /*ec*/) {
    stack_.push_bool(flag);
    return true;
  }
  bool on_null(error_code& /*ec*/) {
    stack_.push_null();
    return true;
  }
  bool on_comment_part(std::string_view /*part*/, error_code& /*ec*/) { return true; }
  bool on_comment(std::string_view /*last*/, error_code& /*ec*/) { return true; }

 private:
  /// Keeps a number as its nearest double. As an integer where only that has all digits, and as the
  /// double next to the nearest where the number itself would truncate to another integer.
  void pushNumber(double nearest, const std::optional<Whole>& whole) {
    if (!whole) return push(nearest);
    const std::optional<int64_t> integer = whole->asInteger();
    const double towardsNought = std::nextafter(nearest, 0);
    if (!integer && whole->isIntegral && !whole->isNegative && !isSame(nearest, whole->magnitude))
      return push(whole->magnitude);
    if (!integer || integer == truncated(nearest)) return push(nearest);
    return integer == truncated(towardsNought) ? push(towardsNought) : push(*integer);
  }
  void push(double number) { stack_.push_double(number); }
  void push(int64_t number) { stack_.push_int64(number); }
  void push(uint64_t number) { stack_.push_uint64(number); }

  static bool isSame(double number, uint64_t other) {
    return number < 0x1p64 && static_cast<uint64_t>(number) == other;
  }

  boost::json::value_stack stack_;
};

}  // namespace

std::optional<Tree> parse(std::string_view text, boost::json::storage_ptr storage) try {
  // Room for the values of an ordinary message, so that reading one allocates nothing here.
  std::array<unsigned char, 2048> scratch;  // NOLINT: filled before it is read
  boost::json::parse_options options;
  options.max_depth = depthLimit;
  boost::json::basic_parser<TreeBuilder> parser(options, storage, scratch.data(), scratch.size());
  error_code ec;
  const std::size_t read = parser.write_some(false, text.data(), text.size(), ec);
  if (ec || !parser.done() || read != text.size()) return std::nullopt;
  return std::optional<Tree>(std::in_place, parser.handler().release(), std::move(storage));
} catch (const std::exception&) {
  return std::nullopt;  // out of memory, or a text above the library's own 2 GiB limit
}

void appendTree(std::string& out, const Tree& tree) {
  boost::json::serializer serializer;
  serializer.reset(&tree);
  std::array<char, 1024> buffer{};
  while (!serializer.done()) {
    const boost::json::string_view piece = serializer.read(buffer.data(), buffer.size());
    out.append(piece.data(), piece.size());
  }
}

const Tree* find(const TreeObject& object, std::string_view key) { return object.if_contains(key); }

std::optional<std::string_view> findText(const TreeObject& object, std::string_view key) {
  const Tree* member = find(object, key);
  const boost::json::string* text = member != nullptr ? member->if_string() : nullptr;
  if (text == nullptr) return std::nullopt;
  return std::string_view(text->data(), text->size());
}

const TreeObject* findObject(const TreeObject& object, std::string_view key) {
  const Tree* member = find(object, key);
  return member != nullptr ? member->if_object() : nullptr;
}

}  // namespace quillpost::json
