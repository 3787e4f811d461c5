// The numbered body and the log, at any page of any text.

#include "base/text.h"
#include "base/unicode.h"
#include "fuzz/input.h"
#include "json/value.h"
#include "render/pages.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillpost::fuzz {
namespace {

void tryPage(std::string_view body, const Page& page) {
  const std::string text = numberedBody(body, page);
  require(unicode::isValid(text), "a body that is not UTF-8");
  require(!text.empty(), "a body without any word");
  // Each line gets its number, and the page a foot at most.
  const std::size_t lines = text::split(body, '\n').size();
  require(text.size() <= body.size() + 40 * lines + 400, "a body that grew");
}

void tryLog(std::string_view body, const Page& page) {
  std::vector<std::string> log;
  for (const std::string_view line : text::split(body, '\n')) log.emplace_back(line);
  std::string text;
  {
    json::Array out(text);
    addLogPage(out, log, page);
  }
  const std::optional<json::Tree> tree = json::parse(text);
  require(tree && tree->is_array(), "a log that is not a list");
  const std::size_t shown = tree->get_array().size();
  require(shown >= 1 && shown <= log.size() + 1, "a log of another length");
  if (!page.limit) require(shown <= 31, "a log beyond its usual length");
}

}  // namespace
}  // namespace quillpost::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  using quillpost::Page;
  quillpost::fuzz::Source source(bytes, size);
  const Page page = {.offset = source.anyNumber(), .limit = source.anyNumber()};
  const std::string_view body = source.rest();
  if (!quillpost::unicode::isValid(body)) return 0;
  quillpost::fuzz::tryPage(body, page);
  quillpost::fuzz::tryLog(body, page);
  return 0;
}
