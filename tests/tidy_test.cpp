// The house rules that can be checked, held against the whole tree; and each rule held against
// small trees that break it or keep it. A finding is printed as file:line: what is wrong.

#include "harness/paths.h"
#include "tidy/rules.h"
#include "tidy/source.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace quillpost::tidy {

/// How a failing test shows its parameter.
static void PrintTo(const Rule& rule, std::ostream* out) { *out << rule.name; }

namespace {

const Tree& wholeTree() {
  static const Tree tree = readTree(testing::inSources(""));
  return tree;
}

std::string nameOf(const ::testing::TestParamInfo<Rule>& info) {
  return std::string(info.param.name);
}

class HouseRule : public ::testing::TestWithParam<Rule> {};

TEST_P(HouseRule, IsKeptByTheWholeTree) {
  for (const Finding& finding : GetParam().check(wholeTree())) ADD_FAILURE() << finding;
}

INSTANTIATE_TEST_SUITE_P(Tidy, HouseRule, ::testing::ValuesIn(rules().begin(), rules().end()),
                         nameOf);

TEST(Tidy, LooksAtEveryKindOfFile) {
  for (const std::string path : {"CMakeLists.txt", ".ci/run", "scripts/test", "src/base/clock.h",
                                 "src/base/text.cpp", "tests/tidy_test.cpp"}) {
    EXPECT_NE(std::ranges::find(wholeTree(), path, &Source::path), wholeTree().end()) << path;
  }
  for (const Source& source : wholeTree()) {
    EXPECT_FALSE(source.isIn("build/") || source.isIn(".git/")) << source.path;
  }
}

/// A small tree, and where a rule finds something in it.
struct Sample {
  std::string_view rule;
  std::string name;
  std::vector<std::pair<std::string, std::string>> files;
  std::vector<std::string> found;
};

std::string lines(int count, const std::string& line) {
  std::string text;
  for (int i = 0; i < count; ++i) text += line + "\n";
  return text;
}

std::string fenced(const std::string& text) {
  return "// clang-format off\n" + text + "// clang-format on\n";
}

std::vector<Sample> includeSamples() {
  return {
      {"folders", "along the arrows", {{"src/calls/a.cpp", "#include \"render/a.h\"\n"}}, {}},
      {"folders",
       "against the arrows",
       {{"src/model/a.h", "#pragma once\n\n#include \"render/a.h\"\n"}},
       {"src/model/a.h:3"}},
      {"folders",
       "the server and the one header of the bridge",
       {{"src/calls/a.cpp", "#include \"bridge/bridge.h\"\n#include \"bridge/transport.h\"\n"}},
       {"src/calls/a.cpp:2"}},
      {"folders",
       "the words",
       {{"src/render/texts/a.h", "#include \"base/text.h\"\n#include \"base/clock.h\"\n"},
        {"src/render/a.h", "#include \"base/text.h\"\n#include \"base/unicode.h\"\n"}},
       {"src/render/texts/a.h:2"}},
      {"folders",
       "a renderer and the doors",
       {{"src/render/a.cpp",
         "#include \"base/clock.h\"\n#include \"base/text.h\"\n#include \"base/output.h\"\n"}},
       {"src/render/a.cpp:1", "src/render/a.cpp:3"}},
      {"folders",
       "the other program",
       {{"board/serving/a.cpp",
         "#include \"bridge/unix_socket.h\"\n#include \"calls/arguments.h\"\n"},
        {"board/main.cpp", "#include \"board/person/a.h\"\n#include \"render/a.h\"\n"}},
       {"board/serving/a.cpp:2", "board/main.cpp:2"}},
      {"folders",
       "each folder of the board",
       {{"board/rules/a.h", "#include \"board/rules/b.h\"\n#include \"board/verbs/a.h\"\n"},
        {"board/verbs/a.h", "#include \"board/rules/b.h\"\n#include \"board/serving/a.h\"\n"},
        {"board/serving/a.h", "#include \"board/verbs/b.h\"\n#include \"board/person/a.h\"\n"},
        {"board/person/a.h", "#include \"board/serving/b.h\"\n#include \"board/page/a.h\"\n"},
        {"board/page/a.h", "#include \"board/person/b.h\"\n#include \"tools/tools.h\"\n"}},
       {"board/rules/a.h:2", "board/verbs/a.h:2", "board/serving/a.h:2", "board/person/a.h:2",
        "board/page/a.h:2"}},
      {"folders",
       "a path from elsewhere",
       {{"tests/base/a_test.cpp", "#include \"../a.h\"\n#include \"a.h\"\n#include <a.h>\n"}},
       {"tests/base/a_test.cpp:1", "tests/base/a_test.cpp:2"}},
      {"systemHeaders",
       "sockets",
       {{"src/bridge/transport.cpp", "#include <sys/socket.h>\n"},
        {"src/bridge/discovery.cpp", "#include <sys/socket.h>\n"},
        {"src/base/a.h", "#include <vector>\n"},
        {"tests/harness/a.cpp", "#include <sys/socket.h>\n"}},
       {"src/bridge/discovery.cpp:1"}},
      {"systemHeaders",
       "the board's sockets",
       {{"board/serving/listener.cpp", "#include <sys/socket.h>\n"},
        {"board/person/client.cpp", "#include <sys/socket.h>\n#include <sys/un.h>\n"},
        {"board/page/site.cpp", "#include <sys/socket.h>\n#include <netinet/in.h>\n"},
        {"board/person/run.cpp", "#include <sys/socket.h>\n"},
        {"board/rules/board.h", "#include <sys/socket.h>\n"}},
       {"board/person/client.cpp:2", "board/page/site.cpp:2", "board/person/run.cpp:1",
        "board/rules/board.h:1"}},
      {"systemHeaders",
       "streams that are built before main",
       {{"src/entry/main.cpp", "#include <iostream>\n"},
        {"board/main.cpp", "#include <iostream>\n"},
        {"board/serving/store.cpp", "#include <iostream>\n"}},
       {"src/entry/main.cpp:1", "board/serving/store.cpp:1"}},
      {"systemHeaders",
       "threads",
       {{"board/page/feed.h",
         "#include <condition_variable>\n#include <mutex>\n#include <thread>\n"},
        {"board/page/site.cpp", "#include <atomic>\n#include <future>\n"},
        {"board/person/spawn.cpp", "#include <atomic>\n#include <thread>\n"},
        {"board/serving/store.cpp", "#include <atomic>\n#include <mutex>\n"},
        {"board/verbs/a.cpp", "#include <condition_variable>\n#include <thread>\n"},
        {"src/base/clock.h", "#include <thread>\n"},
        {"src/base/a.h", "#include <thread>\n"}},
       {"board/page/site.cpp:2", "board/person/spawn.cpp:2", "board/serving/store.cpp:1",
        "board/serving/store.cpp:2", "board/verbs/a.cpp:1", "board/verbs/a.cpp:2",
        "src/base/a.h:1"}},
  };
}

std::vector<Sample> shapeSamples() {
  return {
      {"pragmaOnce",
       "first line or not",
       {{"src/base/a.h", "#pragma once\n"},
        {"src/base/b.h", "// Why.\n#pragma once\n"},
        {"src/base/c.cpp", ""},
        {"src/base/d.h", ""}},
       {"src/base/b.h:1", "src/base/d.h:1"}},
      {"fileLengths",
       "headers and sources",
       {{"src/base/a.h", lines(200, "//")},
        {"src/base/b.h", lines(201, "//")},
        {"src/base/a.cpp", lines(400, "//")},
        {"board/b.cpp", lines(401, "//")}},
       {"src/base/b.h:201", "board/b.cpp:401"}},
      {"fileLengths",
       "tables, words and tests",
       {{"src/base/a.h", fenced(lines(300, "//"))},
        {"src/tools/seats.h", lines(700, "//")},
        {"src/render/texts/a.h", lines(300, "//")},
        {"tests/base/a_test.cpp", lines(500, "//")}},
       {}},
      {"documentation",
       "types and functions of headers",
       {{"src/base/a.h",
         "namespace a {\n\nstruct Known;\n\n/// Why.\nstruct A {\n  int x() const;\n};\n\n"
         "struct B {};\n\n/// Why.\nint f();\nint g(bool x = true);\n\nint h();\n\n"
         "// Not for the reader.\ntemplate <class T>\nvoid k(T x) {}\n\n"
         "/// Why.\ntemplate <class T>\nvoid l(T x) {}\n\nenum class E { a };\n"
         "\ntemplate <>\nstruct a::Names<E> {};\n\nint A::x() const { return 1; }\n\nnamespace "
         "detail {\nint m();\n}  // namespace detail\n"
         "\nstruct D : B<E> {};\n"
         "\nusing X = int;\n\nconstexpr int limit = f(1);\n}  // namespace a\n"},
        {"src/base/a.cpp", "int f() { return 1; }\n"}},
       {"src/base/a.h:10", "src/base/a.h:16", "src/base/a.h:19", "src/base/a.h:26",
        "src/base/a.h:37"}},
      {"testPerSource",
       "with and without",
       {{"src/base/a.cpp", ""},
        {"src/base/b.cpp", ""},
        {"src/base/c.h", ""},
        {"src/entry/main.cpp", ""},
        {"board/rules/d.cpp", ""},
        {"board/rules/e.cpp", ""},
        {"tests/base/a_test.cpp", ""},
        {"tests/board/rules/d_test.cpp", ""}},
       {"src/base/b.cpp:1", "board/rules/e.cpp:1"}},
      {"targets",
       "built or not",
       {{"tests/a_test.cpp", ""},
        {"tests/a/rows.cpp", ""},
        {"tests/b/rows.cpp", ""},
        {"tests/base/a_test.cpp", ""},
        {"tests/base/rows.cpp", ""},
        {"tests/base/deep/a_test.cpp", ""},
        {"tests/harness/app.cpp", ""},
        {"tests/strange/a_test.cpp", ""}},
       {"tests/b/rows.cpp:1", "tests/base/rows.cpp:1", "tests/base/deep/a_test.cpp:1",
        "tests/strange/a_test.cpp:1"}},
  };
}

std::vector<Sample> wordSamples() {
  return {
      {"words",
       "code",
       {{"src/base/a.cpp",
         "std::cout << 1;\nint printfLike;\nif (x) throw y;\n// throw\nsay(\"throw\");\n"
         "f('\"'); std::exit(1);\n/* throw\n throw */ dynamic_cast<A*>(b);\nexitStatus();\n"}},
       {"src/base/a.cpp:1", "src/base/a.cpp:3", "src/base/a.cpp:6", "src/base/a.cpp:8"}},
      {"words",
       "doors",
       {{"src/base/clock.h", "std::chrono::steady_clock::now(); std::this_thread::sleep_for(x);\n"},
        {"src/calls/a.cpp", "std::chrono::steady_clock::now();\nstd::this_thread::sleep_for(x);\n"},
        {"src/base/environment.h", "std::getenv(name);\n"},
        {"src/entry/main.cpp", "std::getenv(name);\nstd::exit(2);\n"},
        {"tests/base/a_test.cpp", "std::this_thread::sleep_for(x);\n"}},
       {"src/calls/a.cpp:1", "src/calls/a.cpp:2", "src/entry/main.cpp:1",
        "tests/base/a_test.cpp:1"}},
      {"words",
       "the board's clocks",
       {{"board/person/serve.cpp", "std::chrono::system_clock::now();\nsteady_clock::now();\n"},
        {"board/page/feed.cpp", "std::chrono::system_clock::now();\nsteady_clock::now();\n"}},
       {"board/person/serve.cpp:2", "board/page/feed.cpp:1", "board/page/feed.cpp:2"}},
      {"words",
       "other programs",
       {{"src/qp/a.cpp",
         "::vfork();\n::execv(path, words);\n::execvp(path, words);\n::posix_spawnp(&pid);\n"
         "forked();\n"},
        {"board/person/spawn.cpp", "::posix_spawnp(&pid);\n"}},
       {"src/qp/a.cpp:1", "src/qp/a.cpp:2", "src/qp/a.cpp:3", "src/qp/a.cpp:4"}},
      {"words",
       "reminders",
       {{"src/base/a.cpp",
         "// TO"
         "DO: more\n// TO"
         "DOS\nsay(\"FIX"
         "ME\");\n"}},
       {"src/base/a.cpp:1", "src/base/a.cpp:3"}},
      {"words",
       "tests that cannot fail",
       {{"tests/base/a_test.cpp",
         "GTEST"
         "_SKIP();\nTEST(A, DISABLED"
         "_B) {}\nSUCC"
         "EED();\n"}},
       {"tests/base/a_test.cpp:1", "tests/base/a_test.cpp:2", "tests/base/a_test.cpp:3"}},
  };
}

std::vector<Sample> samples() {
  std::vector<Sample> all = includeSamples();
  for (const std::vector<Sample>& more : {shapeSamples(), wordSamples()}) {
    all.insert(all.end(), more.begin(), more.end());
  }
  return all;
}

std::vector<std::string> sorted(std::vector<std::string> places) {
  std::ranges::sort(places);
  return places;
}

TEST(Tidy, EachRuleFindsWhatBreaksItAndNothingElse) {
  for (const Sample& sample : samples()) {
    Tree tree;
    for (const auto& [path, text] : sample.files) tree.push_back(readSource(path, text));
    std::vector<std::string> places;
    for (const Finding& finding : check(sample.rule, tree)) {
      places.push_back(finding.path + ":" + std::to_string(finding.line));
    }
    EXPECT_EQ(sorted(places), sorted(sample.found)) << sample.rule << ", " << sample.name;
  }
}

TEST(Tidy, EachRuleHasASampleThatBreaksIt) {
  for (const Rule& rule : rules()) {
    const std::vector<Sample> all = samples();
    EXPECT_TRUE(std::ranges::any_of(all, [&](const Sample& sample) {
      return sample.rule == rule.name && !sample.found.empty();
    })) << rule.name;
  }
}

}  // namespace
}  // namespace quillpost::tidy
