// Counting, cutting, trimming and comparing any bytes.

#include "base/unicode.h"
#include "fuzz/input.h"
#include "model/markers.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace quillpost::fuzz {
namespace {

void tryCut(std::string_view whole, std::size_t limit) {
  const std::size_t all = unicode::countCharacters(whole);
  require(all <= whole.size() && (all > 0) == !whole.empty(), "a count out of range");
  const std::string_view first = unicode::firstCharacters(whole, limit);
  require(first.data() == whole.data() && first.size() <= whole.size(), "not a beginning");
  require(unicode::countCharacters(first) == std::min(all, limit), "a cut at another length");
  require(unicode::firstCharacters(first, limit) == first, "a cut that cuts again");
  if (unicode::isValid(whole)) require(unicode::isValid(first), "a cut inside a character");
}

void tryTrim(std::string_view whole) {
  for (const auto& trim : {unicode::trim, unicode::trimBlanks, cleanSummary}) {
    const std::string_view inner = trim(whole);
    require(inner.size() <= whole.size(), "trimming that adds");
    require(inner.empty() || (inner.data() >= whole.data() &&
                              inner.data() + inner.size() <= whole.data() + whole.size()),
            "trimming that leaves the text");
    require(trim(inner) == inner, "trimming that is not done");
    if (unicode::isValid(whole)) require(unicode::isValid(inner), "trimming inside a character");
  }
}

void tryCompare(std::string_view one, std::string_view other) {
  require(unicode::equalIgnoringCase(one, one), "a text unlike itself");
  require(unicode::equalIgnoringCase(one, other) == unicode::equalIgnoringCase(other, one),
          "likeness that depends on the order");
}

}  // namespace
}  // namespace quillpost::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  quillpost::fuzz::Source source(bytes, size);
  const std::size_t limit = source.byte();
  const std::string_view whole = source.rest();
  quillpost::fuzz::tryCut(whole, limit);
  quillpost::fuzz::tryTrim(whole);
  quillpost::fuzz::tryCompare(whole, whole.substr(whole.size() / 2));
  quillpost::fuzz::tryCompare(whole.substr(0, whole.size() / 2), whole.substr(whole.size() / 2));
  return 0;
}
