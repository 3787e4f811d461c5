#pragma once

// A board made known: its socket and its tokens as files in a directory where agents look for them.

#include "base/unique_fd.h"
#include "board/rules/names.h"

#include <optional>
#include <string>
#include <string_view>

namespace quillpost::board {

/// The files of one board in a directory.
struct BoardFiles {
  std::string socket;
  /// What agents present. Beside the socket and of the same name.
  std::string token;
  /// What the person's commands present; readable by nobody else, and named to no agent.
  std::string personToken;
};

/// The files of the board of that suffix.
BoardFiles filesIn(std::string_view directory, std::string_view suffix);

/// Whether somebody listens on the socket at this path.
bool isServed(const std::string& path);

/// A board that is being served; its files are removed at the end of this object.
class Publication {
 public:
  /// Binds the socket and writes random tokens, in files that only this user can read. The socket
  /// that a killed board has left is replaced; its tokens are kept, so that a request that was on
  /// its way is still good. Nothing when that fails or when another board is served
  /// there: then `why` says so in words.
  static std::optional<Publication> open(const std::string& directory, const std::string& suffix,
                                         const Random& random, std::string& why);

  Publication(Publication&& other) noexcept;
  Publication& operator=(Publication&&) = delete;
  Publication(const Publication&) = delete;
  Publication& operator=(const Publication&) = delete;
  ~Publication();

  /// Makes again what has been deleted of its files. The new listening socket when the socket was
  /// among them; none while it stands or somebody else's stands in its place.
  UniqueFd restore();

  /// The listening socket, given away.
  UniqueFd takeSocket() { return std::move(socket_); }

  const BoardFiles& files() const { return files_; }
  const std::string& token() const { return token_; }
  const std::string& personToken() const { return personToken_; }

 private:
  Publication(UniqueFd socket, BoardFiles files, const Random& random);

  UniqueFd socket_;
  BoardFiles files_;
  std::string token_, personToken_;
};

}  // namespace quillpost::board
