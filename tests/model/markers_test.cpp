#include "model/markers.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace quillpost {
namespace {

std::string repeated(std::string_view piece, int times) {
  std::string out;
  for (; times > 0; --times) out += piece;
  return out;
}

TEST(CleanSummary, WhiteSpaceAndMarkersAtTheBeginningGo) {
  struct Row {
    std::string name;
    std::string text;
    std::string cleaned;
  };
  const std::vector<Row> rows = {
      {"empty", "", ""},
      {"plain", "done", "done"},
      {"white space", " \n\tdone at last\r\n ", "done at last"},
      {"a no-break space", "\u00A0done\u2028", "done"},
      {"one marker", "[[gist]] done", "done"},
      {"two markers", "[[gist]] [[gist]] done", "done"},
      {"white space between", " [[gist]] \n [[gist]]   done ", "done"},
      {"a marker further on stays", "done [[gist]] done", "done [[gist]] done"},
      {"a marker without its blank stays", "[[gist]]done", "[[gist]]done"},
      {"a marker alone has lost its blank", "[[gist]] ", "[[gist]]"},
      {"two markers alone", "[[gist]] [[gist]] ", "[[gist]]"},
      {"a marker with a line feed stays", "[[gist]]\ndone", "[[gist]]\ndone"},
      {"another case stays", "[[GIST]] done", "[[GIST]] done"},
      {"a hand-off stays", "[[for]] done", "[[for]] done"},
      {"only white space", " \n ", ""},
      {"ten thousand markers", repeated("[[gist]] ", 10000) + "done", "done"},
  };
  for (const Row& row : rows) EXPECT_EQ(cleanSummary(row.text), row.cleaned) << row.name;
}

}  // namespace
}  // namespace quillpost
