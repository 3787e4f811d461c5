#pragma once

// Where this user's applications keep their files, which each platform answers in its own way.

#include "base/environment.h"

#include <optional>
#include <string>
#include <string_view>

#include <sys/types.h>

namespace quillpost {

/// The application-support directory of this user. On macOS what the system reports, elsewhere the
/// XDG data home when that directory exists; "Library/Application Support" in the home directory
/// when there is neither. Nothing when no home directory can be found either.
std::optional<std::string> supportDirectory(const Environment& environment);

/// The home directory: $HOME, or what the password database has when that is unset or empty
/// (outside macOS only its file, /etc/passwd). Nothing when neither names one.
std::optional<std::string> homeDirectory(const Environment& environment);

#if !defined(__APPLE__)
/// The home directory that the first entry of a user in a password file names; nothing when the
/// file cannot be read, has no such entry, or names none there. Lines that are no entries are
/// passed over.
std::optional<std::string> homeInPasswordFile(const std::string& path, uid_t user);
#endif

/// The rule for a directory that the system reports, as "~" and what follows or as a whole path:
/// the path of it; "Library/Application Support" in `home` when nothing was reported.
std::string reportedSupportDirectory(std::string_view reported, std::string_view home);

/// The rule for the XDG data home: the value of its variable when that is an absolute path, else
/// ".local/share" in `home`.
std::string xdgDataHome(const std::optional<std::string>& variable, std::string_view home);

}  // namespace quillpost
