#include "board/person/remote.h"

#include "base/files.h"
#include "base/output.h"
#include "base/text.h"
#include "base/unicode.h"
#include "board/person/console.h"
#include "board/person/spawn.h"
#include "board/rules/names.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <optional>
#include <utility>

#include <unistd.h>

namespace quillpost::board {

namespace {

// What keeps the seat's folder on the other machine. It is told the token and the session, tells
// the folder or what is missing, and lives until its input ends, which it does when the connection
// breaks as well. Every word of it is understood by any shell of POSIX.
constexpr std::string_view keeper = R"(umask 077
for program in quillpost-teamwork qp; do
  command -v "$program" >/dev/null 2>&1 || { echo "missing $program"; exit 1; }
done
folder=
trap 'test -z "$folder" || rm -rf "$folder"' EXIT
trap 'exit 1' HUP INT PIPE TERM
folder=$(mktemp -d /tmp/quillpost.XXXXXXXX) || { echo "missing a folder in /tmp"; exit 1; }
IFS= read -r token && IFS= read -r session || exit 1
printf '%s\n' "$token" >"$folder/board.token"
printf 'export QUILLPOST_SESSION_ID=%s\n' "$session" >"$folder/seat"
printf 'export QUILLPOST_COLLAB_TOKEN_FILE=%s/board.token\n' "$folder" >>"$folder/seat"
printf 'export QUILLPOST_COLLAB_SOCKET=%s/board.sock\n' "$folder" >>"$folder/seat"
echo "folder $folder"
cat >/dev/null
)";

/// What runs the command in the seat, given the folder and the command's words.
constexpr std::string_view runner = R"(. "$0/seat"; exec "$@")";

/// A folder of this machine for the connection's own socket, gone with this object.
struct Folder {
  std::string path = "/tmp/quillpost.XXXXXXXX";
  bool isMade;

  Folder() : isMade(::mkdtemp(path.data()) != nullptr) {}
  ~Folder() {
    if (!isMade) return;
    ::unlink(socket().c_str());
    ::rmdir(path.c_str());
  }
  std::string socket() const { return path + "/ssh"; }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
};

/// The next line of a program's output; nothing when it ends before.
std::optional<std::string> readLineFrom(const UniqueFd& output) {
  std::string line;
  for (;;) {
    char letter = 0;
    const ssize_t count = ::read(output.get(), &letter, 1);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return std::nullopt;
    if (letter == '\n') return line;
    line += letter;
  }
}

/// One connection to the other machine, which all that is run there shares, so that the person
/// gives a password only once.
class Connection {
 public:
  Connection(const Line& line, const Surroundings& around)
      : host_(line.host), variables_(around.variables), control_(folder_.socket()) {}

  ~Connection() {
    if (keeper_.pid <= 0) return;
    keeper_.input = UniqueFd();
    waitFor(keeper_.pid);
  }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  /// Opens it and gives what the keeper says first; nothing when it says nothing.
  std::optional<std::string> open(const std::string& token, const std::string& session,
                                  std::string& why) {
    if (!folder_.isMade) {
      why = "cannot make a folder in /tmp";
      return std::nullopt;
    }
    std::optional<Spawned> spawned =
        spawn({{"ssh", "-M", "-S", control_, "-o", "ControlPersist=no", "-T", host_,
                text::cat("exec sh -c ", quotedForShell(keeper))},
               variables_,
               Streams::piped},
              why);
    if (!spawned) return std::nullopt;
    keeper_ = *std::move(spawned);
    FdOutput(keeper_.input.get()).write(text::cat(token, "\n", session, "\n"));
    std::optional<std::string> said = readLineFrom(keeper_.output);
    if (!said) why = text::cat("cannot reach ", host_, " by ssh");
    return said;
  }

  /// Lets a socket there stand for one here. False when ssh or the other machine does not.
  bool carry(const std::string& there, const std::string& here) {
    std::string why;
    const std::optional<Spawned> spawned =
        spawn({{"ssh", "-S", control_, "-O", "forward", "-R", text::cat(there, ":", here), host_},
               variables_},
              why);
    return spawned && waitFor(spawned->pid) == 0;
  }

  /// Runs the command there, in a terminal when this program has one; gives its status.
  int run(const std::string& folder, const std::vector<std::string>& command) {
    std::string there =
        text::cat("exec sh -c ", quotedForShell(runner), " ", quotedForShell(folder));
    for (const std::string& word : command) there += text::cat(" ", quotedForShell(word));
    const bool hasTerminal = ::isatty(STDIN_FILENO) != 0 && ::isatty(STDOUT_FILENO) != 0;
    std::string why;
    const std::optional<Spawned> spawned =
        spawn({{"ssh", "-S", control_, hasTerminal ? "-t" : "-T", host_, there}, variables_}, why);
    if (!spawned) return complain(why);
    passTo(spawned->pid);
    return waitFor(spawned->pid);
  }

 private:
  Folder folder_;
  std::string host_;
  std::vector<std::string> variables_;
  std::string control_;
  Spawned keeper_;
};

constexpr std::string_view missing = "missing ";
constexpr std::string_view made = "folder ";

}  // namespace

int runThere(const Line& line, const Surroundings& around, const NewSeat& seat) {
  if (line.host.starts_with('-')) return complain("a machine's name begins with no dash");
  const std::string token(unicode::trim(files::readSmallText(seat.tokenFile).value_or("")));
  std::string why;
  Connection connection(line, around);
  const std::optional<std::string> said = connection.open(token, seat.session, why);
  if (!said) return complain(why);
  if (said->starts_with(missing)) {
    return complain(text::cat("on ", line.host, " there is no ", said->substr(missing.size()),
                              " on the PATH that ssh gives a command: install Quillpost's package "
                              "there, or name its folder in that PATH"));
  }
  if (!said->starts_with(made)) return complain(text::cat(line.host, " says: ", *said));
  const std::string folder = said->substr(made.size());
  if (!connection.carry(folder + "/board.sock", seat.socket)) {
    return complain(text::cat(line.host,
                              " does not let ssh carry a socket to it: its "
                              "AllowStreamLocalForwarding must be yes"));
  }
  return connection.run(folder, line.words);
}

}  // namespace quillpost::board
