#include "board/person/command_path.h"

#include "base/text.h"
#include "harness/fake_environment.h"
#include "harness/temp_dir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include <sys/stat.h>

namespace quillpost::board {
namespace {

/// A folder with this program and qp in it.
struct CommandPath : ::testing::Test {
  CommandPath() {
    home.write("qp", "#!/bin/sh\n");
    ::chmod(home.pathOf("qp").c_str(), 0755);
  }
  std::string lineWith(const std::string& path) const {
    return commandPathLine(home.pathOf("quillpost-board"),
                           testing::FakeEnvironment({{"PATH", path}}));
  }
  std::string folder() const { return std::filesystem::canonical(home.path()).string(); }

  testing::TempDir home;
};

TEST_F(CommandPath, PutsTheFolderOfQpBehindWhatIsThere) {
  EXPECT_EQ(lineWith("/usr/bin"), text::cat("export PATH=\"$PATH\":'", folder(), "'\n"));
  EXPECT_EQ(lineWith(text::cat("/usr/bin:", folder(), "/more")), lineWith("/usr/bin"));
}

TEST_F(CommandPath, IsLeftAloneWhereQpIsFoundAlready) {
  EXPECT_EQ(lineWith(folder()), "");
  EXPECT_EQ(lineWith(text::cat("/usr/bin:", folder(), ":/bin")), "");
  EXPECT_EQ(commandPathLine("quillpost-board", testing::FakeEnvironment()), "");
}

TEST_F(CommandPath, IsLeftAloneWhereNoQpStands) {
  ::chmod(home.pathOf("qp").c_str(), 0644);
  EXPECT_EQ(lineWith("/usr/bin"), "") << "nobody can run it";
  std::filesystem::remove(home.pathOf("qp"));
  EXPECT_EQ(lineWith("/usr/bin"), "");
  EXPECT_EQ(commandPathLine("/nowhere/quillpost-board", testing::FakeEnvironment()), "");
}

TEST_F(CommandPath, StandsFirstForWhatTheProgramStarts) {
  const std::string program = home.write("quillpost-board", "");
  EXPECT_EQ(pathWith({program, {"HOME=/h", "PATH=/usr/bin"}}),
            text::cat("PATH=", folder(), ":/usr/bin"));
  EXPECT_EQ(pathWith({program, {}}), text::cat("PATH=", folder()));
  EXPECT_EQ(pathWith({"quillpost-board", {"PATH=/usr/bin"}}), "PATH=/usr/bin");
}

}  // namespace
}  // namespace quillpost::board
