#include "model/client_profile.h"

#include <gtest/gtest.h>

namespace quillpost {
namespace {

using Profile = TeamworkClientProfile::Profile;

TEST(ClientProfile, IsFoundInTheNameInAFixedOrder) {
  struct Row {
    std::string_view name;
    Profile profile;
  };
  for (const Row& row : {
           Row{"claude", Profile::claude},
           Row{"claude-code", Profile::claude},
           Row{"Claude Desktop", Profile::claude},
           Row{"my-CLAUDE", Profile::claude},
           Row{"codex", Profile::codex},
           Row{"codex-mcp-client", Profile::codex},
           Row{"OpenCodex 2", Profile::codex},
           Row{"antigravity", Profile::antigravity},
           Row{"Antigravity-Client", Profile::antigravity},
           Row{"agy", Profile::antigravity},
           Row{"AGY", Profile::antigravity},
           Row{"cursor", Profile::cursor},
           Row{"cursor-vscode", Profile::cursor},
           Row{"Cursor", Profile::cursor},
           // The first that is tested wins.
           Row{"cursor-antigravity-codex-claude", Profile::claude},
           Row{"cursor-antigravity-codex", Profile::codex},
           Row{"cursor-antigravity", Profile::antigravity},
           // The short name counts only as a whole.
           Row{"agy-cli", Profile::unknown},
           Row{"agy ", Profile::unknown},
           Row{"stagy", Profile::unknown},
           Row{"agy-cursor", Profile::cursor},
           Row{"", Profile::unknown},
           Row{"claud", Profile::unknown},
           Row{"clau de", Profile::unknown},
           Row{"code", Profile::unknown},
           Row{"anti-gravity", Profile::unknown},
           Row{"curs0r", Profile::unknown},
           Row{"vscode", Profile::unknown},
           Row{"ｃｌａｕｄｅ", Profile::unknown},
       })
    EXPECT_EQ(TeamworkClientProfile::fromName(row.name), row.profile) << row.name;
}

TEST(ClientProfile, IsFoundByEachNameInItsRow) {
  for (const ClientTraits& client : clients) {
    EXPECT_EQ(TeamworkClientProfile::fromName(client.word), client.profile) << client.word;
    if (client.whole.empty()) continue;
    EXPECT_EQ(TeamworkClientProfile::fromName(client.whole), client.profile) << client.whole;
  }
}

TEST(ClientTraits, AreThoseOfTheProfile) {
  for (const Profile profile :
       {Profile::claude, Profile::codex, Profile::antigravity, Profile::cursor, Profile::unknown})
    EXPECT_EQ(traitsOf(profile).profile, profile);
}

TEST(ClientProfile, IsFoundBehindBytesThatAreNoText) {
  EXPECT_EQ(TeamworkClientProfile::fromName(std::string_view("\0\xff codex", 8)), Profile::codex);
}

}  // namespace
}  // namespace quillpost
