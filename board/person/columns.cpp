#include "board/person/columns.h"

#include <algorithm>
#include <iterator>

namespace quillpost::board {

namespace {

using enum ColumnKind;

// What a terminal is told, after ESC [, to write in a colour.
constexpr std::string_view plain;
constexpr std::string_view loud = "1;33m";
constexpr std::string_view red = "31m";
constexpr std::string_view green = "32m";
constexpr std::string_view cyan = "36m";
constexpr std::string_view dim = "2m";

// clang-format off
constexpr SectionRow sectionRows[] = {
    {"thread",   "",                Form::block,   plain, true},
    {"needs",    "NEEDS YOU",       Form::block,   loud},
    {"blocked",  "BLOCKED",         Form::table,   red},
    {"working",  "IN WORK",         Form::table,   green},
    {"ready",    "READY",           Form::table,   cyan},
    {"waiting",  "WAITING",         Form::table,   plain},
    {"done",     "DONE",            Form::table,   dim},
    {"declined", "DECLINED",        Form::table,   dim},
    {"deleted",  "DELETED (restore puts one back)", Form::table, dim},
    {"agents",   "AGENTS",          Form::table,   plain},
    {"debates",  "DISCUSSIONS",     Form::table,   plain},
    {"hands",    "HELPERS",         Form::table,   plain},
    {"allowed",  "ALLOWED HELPERS", Form::block,   plain},
    {"suggested", "SUGGESTED HELPERS", Form::block, loud},
    {"output",   "OUTPUT",          Form::wrapped, plain, true},
    {"threads",  "THREADS",         Form::table,   plain},
    {"seats",    "SEATS",           Form::table,   plain},
    {"task",     "",                Form::block,   plain, true},
    {"brief",    "BRIEF",           Form::wrapped, plain, true},
    {"log",      "LOG",             Form::wrapped, plain},
    {"debate",   "",                Form::block,   plain, true},
    {"volleys",  "VOLLEYS",         Form::wrapped, plain},
    {"agent",    "",                Form::block,   plain, true},
    {"moves",    "MOVES",           Form::wrapped, plain},
    {"findings", "FINDINGS",        Form::wrapped, red},
};

constexpr ColumnRow columnRows[] = {
    {"id",          word,   ""},
    {"thread",      word,   ""},
    {"tag",         word,   ""},
    {"kind",        word,   ""},
    {"handle",      word,   ""},
    {"mark",        word,   ""},
    {"label",       words,  ""},
    {"state",       word,   ""},
    {"holder",      word,   ""},
    {"by",          word,   ""},
    {"from",        word,   "from "},
    {"at",          clock,  ""},
    {"since",       ago,    ""},
    {"move",        word,   ""},
    {"task",        word,   ""},
    {"priority",    number, "priority "},
    {"type",        word,   "type "},
    {"lease",       span,   "lease "},
    {"silent",      span,   "silent "},
    {"revision",    number, "revision "},
    {"squad",       word,   "squad "},
    {"open",        number, "open "},
    {"finished",    number, "done "},
    {"needing",     number, "need you "},
    {"present",     number, "agents "},
    {"holds",       number, "holds "},
    {"attempts",    number, "claimed so often: "},
    {"volleys",     word,   ""},
    {"title",       words,  ""},
    {"goal",        words,  "Goal: "},
    {"charter",     words,  "Charter: "},
    {"remark",      words,  ""},
    {"question",    words,  ""},
    {"options",     items,  ""},
    {"consequence", words,  "What it leads to: "},
    {"artifact",    words,  "Look at: "},
    {"secret",      words,  "Wanted: the secret "},
    {"answer",      words,  "Answer: "},
    {"parked",      words,  "Parked: "},
    {"waitsOn",     items,  "Waits on: "},
    {"role",        words,  "Role: "},
    {"meantFor",    words,  "Meant for: "},
    {"resources",   items,  "Touches: "},
    {"review",      words,  "Review: "},
    {"tagged",      items,  "Tagged: "},
    {"watchers",    items,  "Watched by: "},
    {"wantedBy",    items,  "Wanted by: "},
    {"parties",     items,  "Between: "},
    {"waitsFor",    words,  "Waits for: "},
    {"resolution",  words,  "Resolution: "},
    {"name",        words,  ""},
    {"status",      words,  ""},
    {"text",        words,  ""},
    {"what",        words,  ""},
    {"command",     words,  ""},
    {"helper",      word,   ""},
    {"arguments",   exact,  "Runs: "},
    {"directory",   words,  "In: "},
    {"marks",       words,  ""},
    {"reason",      words,  ""},
    {"do",          words,  "> "},
    {"note",        note,   ""},
};
// clang-format on

}  // namespace

ColumnRow columnNamed(std::string_view name) {
  const ColumnRow* const found = std::ranges::find(columnRows, name, &ColumnRow::name);
  return found == std::end(columnRows) ? ColumnRow{name, words, {}} : *found;
}

SectionRow sectionNamed(std::string_view name) {
  const SectionRow* const found = std::ranges::find(sectionRows, name, &SectionRow::name);
  return found == std::end(sectionRows) ? SectionRow{name, {}, Form::table, {}} : *found;
}

}  // namespace quillpost::board
