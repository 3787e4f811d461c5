#include "base/support_directory.h"

#include "base/files.h"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <vector>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#if defined(__APPLE__)
#include <climits>
#if __has_include(<sysdir.h>)
#include <sysdir.h>
#else
// What the header would declare; the functions are in the C library all the same.
extern "C" {
using sysdir_search_path_enumeration_state = unsigned int;
sysdir_search_path_enumeration_state sysdir_start_search_path_enumeration(unsigned int directory,
                                                                          unsigned int domains);
sysdir_search_path_enumeration_state sysdir_get_next_search_path_enumeration(
    sysdir_search_path_enumeration_state state, char* path);
}
constexpr unsigned int SYSDIR_DIRECTORY_APPLICATION_SUPPORT = 14;
constexpr unsigned int SYSDIR_DOMAIN_MASK_USER = 1;
#endif
#endif

namespace quillpost {

namespace {

#if defined(__APPLE__)

/// The first size to try for an entry of the password database, and the one to give up at; either
/// in bytes and far above an ordinary entry.
constexpr std::size_t firstEntrySize = 1024;
constexpr std::size_t lastEntrySize = std::size_t{1} << 20;

std::optional<std::string> homeInPasswordDatabase() {
  for (std::size_t size = firstEntrySize; size <= lastEntrySize; size *= 2) {
    std::vector<char> texts(size);
    passwd entry{};
    passwd* found = nullptr;
    const int error = ::getpwuid_r(::getuid(), &entry, texts.data(), texts.size(), &found);
    if (error == ERANGE) continue;
    if (error != 0 || found == nullptr || found->pw_dir == nullptr || *found->pw_dir == '\0') {
      return std::nullopt;
    }
    return std::string(found->pw_dir);
  }
  return std::nullopt;
}

/// What the system reports for this user; empty when it reports nothing.
std::string reportedBySystem() {
  char path[PATH_MAX] = "";
  const auto state = sysdir_start_search_path_enumeration(SYSDIR_DIRECTORY_APPLICATION_SUPPORT,
                                                          SYSDIR_DOMAIN_MASK_USER);
  if (sysdir_get_next_search_path_enumeration(state, path) == 0) return {};
  return path;
}

#else

// The name service would load libraries into a program that has its C library built in, and those
// belong to another one.
std::optional<std::string> homeInPasswordDatabase() {
  return homeInPasswordFile("/etc/passwd", ::getuid());
}

bool isDirectory(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

#endif

}  // namespace

std::optional<std::string> supportDirectory(const Environment& environment) {
  const std::optional<std::string> home = homeDirectory(environment);
#if defined(__APPLE__)
  const std::string reported = reportedBySystem();
#else
  // Without a home directory the variable alone can still name one.
  std::string reported = xdgDataHome(environment.get("XDG_DATA_HOME"), home.value_or(""));
  if (!isDirectory(reported)) reported.clear();
#endif
  if (!home && !reported.starts_with('/')) return std::nullopt;
  return reportedSupportDirectory(reported, home.value_or(""));
}

std::optional<std::string> homeDirectory(const Environment& environment) {
  std::optional<std::string> home = environment.get("HOME");
  if (home && !home->empty()) return home;
  return homeInPasswordDatabase();
}

#if !defined(__APPLE__)
std::optional<std::string> homeInPasswordFile(const std::string& path, uid_t user) {
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  const std::unique_ptr<std::FILE, Close> file(std::fopen(path.c_str(), "re"));
  if (!file) return std::nullopt;
  while (const passwd* entry = ::fgetpwent(file.get())) {
    if (entry->pw_uid != user) continue;
    return *entry->pw_dir != '\0' ? std::optional<std::string>(entry->pw_dir) : std::nullopt;
  }
  return std::nullopt;
}
#endif

std::string reportedSupportDirectory(std::string_view reported, std::string_view home) {
  if (reported.empty()) return files::joinPath(home, "Library/Application Support");
  if (reported.starts_with('~')) return files::joinPath(home, reported.substr(1));
  return std::string(reported);
}

std::string xdgDataHome(const std::optional<std::string>& variable, std::string_view home) {
  if (variable && variable->starts_with('/')) return *variable;
  return files::joinPath(home, ".local/share");
}

}  // namespace quillpost
