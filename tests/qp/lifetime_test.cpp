#include "qp/lifetime.h"

#include <gtest/gtest.h>

namespace quillpost {
namespace {

TEST(ProcessLine, IsReadWhateverTheNameHolds) {
  const ProcessFacts facts = readProcessLine(
      "412 (a) b (c) S 77 412 412 34816 412 4194304 1 0 0 0 0 0 0 0 20 0 1 0 998877 1 1 1\n");
  EXPECT_EQ(facts.parent, 77);
  EXPECT_EQ(facts.name, "a) b (c");
  EXPECT_EQ(facts.startedAt, "998877");
  EXPECT_FALSE(facts.isEnded);
  EXPECT_TRUE(readProcessLine("4 (x) Z 7 4 4 0 -1 4 1 0 0 0 0 0 0 0 20 0 1 0 99 0").isEnded);
}

TEST(ProcessLine, ThatIsNoneHasNoParent) {
  for (const std::string_view line : {"", "412 (a", "412 a) S 77", ")(", "412 (a) S",
                                      "4 (x) S y 4 4 0 -1 4 1 0 0 0 0 0 0 0 20 0 1 0 9"})
    EXPECT_EQ(readProcessLine(line).parent, 0) << line;
}

TEST(ProcessLifetime, IsNotOverWhileEverybodyIsThere) {
  ProcessLifetime lifetime("ses");
  lifetime.begin();
  EXPECT_FALSE(lifetime.isOver());
  EXPECT_FALSE(lifetime.isOver());
}

}  // namespace
}  // namespace quillpost
