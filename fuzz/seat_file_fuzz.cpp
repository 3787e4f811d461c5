// The seat file, the token file, and the paths that are made from them.

#include "base/files.h"
#include "base/unicode.h"
#include "bridge/discovery.h"
#include "bridge/transport.h"
#include "bridge/unix_socket.h"
#include "fuzz/input.h"
#include "harness/fake_environment.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include <unistd.h>

namespace quillpost::fuzz {
namespace {

/// A directory with a seat file, one for each process.
struct Disk {
  Disk() { std::filesystem::create_directories(base / "Quillpost"); }
  ~Disk() { std::filesystem::remove_all(base); }
  // In memory where the system has such a place: a disk would take most of the time.
  std::filesystem::path base =
      (std::filesystem::exists("/dev/shm") ? "/dev/shm" : std::filesystem::temp_directory_path()) /
      std::filesystem::path("fuzz-seat-" + std::to_string(::getpid()));
};

void tryFile(std::string_view bytes) {
  static const Disk disk;
  const std::filesystem::path file = disk.base / "Quillpost" / "agent-seat";
  std::ofstream(file, std::ios::binary).write(bytes.data(), static_cast<long>(bytes.size()));

  const testing::FakeEnvironment environment;
  const std::optional<std::string> seat =
      BridgeDiscovery::seatSocketPath({environment, disk.base.string()});
  if (seat) {
    require(unicode::isValid(bytes), "a seat from what is not UTF-8");
    require(!seat->empty() && unicode::trim(*seat) == *seat, "a seat with white space");
    require(seat->find('\n') == std::string::npos, "a seat of several lines");
    require(bytes.find(*seat) != std::string_view::npos, "a seat from nowhere");
  }
  SocketBridge bridge({.socketPath = "", .tokenFilePath = file.string(), .startToken = "start"});
  const std::string token = bridge.currentToken();
  require(!token.empty() && unicode::trim(token) == token, "a token with white space");
}

void tryPath(const std::string& path) {
  const std::string sibling =
      BridgeDiscovery::siblingSocketPath(path, BridgeDiscovery::Kind::teamwork);
  if (!sibling.empty()) {
    require(files::lastComponent(sibling).starts_with("teamwork-"), "not a sibling");
    require(sibling.size() <= path.size() + std::string_view("teamwork").size(), "a long sibling");
  }
  const std::string token = BridgeDiscovery::tokenPathFor(path);
  const bool hasName = path.find_first_not_of('/') != std::string::npos;
  require(token.ends_with(".token") || !hasName, "a token file without its extension");
  if (fitsSocketAddress(path)) require(path.size() < socketPathLimit, "a path that does not fit");
}

}  // namespace
}  // namespace quillpost::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  const std::string_view whole(reinterpret_cast<const char*>(bytes), size);
  quillpost::fuzz::tryFile(whole);
  quillpost::fuzz::tryPath(std::string(whole));
  return 0;
}
