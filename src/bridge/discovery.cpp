#include "bridge/discovery.h"

#include "base/files.h"
#include "base/support_directory.h"
#include "base/text.h"
#include "base/unicode.h"
#include "bridge/unix_socket.h"

#include <algorithm>
#include <ctime>
#include <utility>

namespace quillpost {

namespace {

/// The app's own directory; its siblings add a "-" and a name of their own.
constexpr std::string_view appDirectory = "Quillpost";
constexpr std::string_view siblingPrefix = "Quillpost-";
constexpr std::string_view seatFile = "agent-seat";

/// Seconds and nanoseconds; one that could not be read is before all others.
using Date = std::optional<std::pair<std::time_t, long>>;

struct DatedCandidate {
  BridgeDiscovery::Candidate candidate;
  Date date;
};

Date dateOf(const files::Entry& entry) {
  if (!entry.modified) return std::nullopt;
  return std::pair{entry.modified->tv_sec, entry.modified->tv_nsec};
}

bool isOfTheApp(std::string_view directory) {
  return directory == appDirectory || directory.starts_with(siblingPrefix);
}

void appendCandidates(std::vector<DatedCandidate>& found, const std::string& directory,
                      std::string_view prefix) {
  const auto isSocket = [&](std::string_view name) {
    return name.starts_with(prefix) && name.ends_with(".sock");
  };
  for (const files::Entry& entry : files::list(directory, isSocket)) {
    const std::string path = files::joinPath(directory, entry.name);
    found.push_back({{path, BridgeDiscovery::tokenPathFor(path)}, dateOf(entry)});
  }
}

}  // namespace

std::optional<std::string> BridgeDiscovery::Where::directory() const {
  return base ? base : supportDirectory(environment);
}

std::optional<std::string> BridgeDiscovery::seatSocketPath(const Where& where) {
  const std::optional<std::string> directory = where.directory();
  if (!directory) return std::nullopt;
  const std::optional<std::string> seat =
      files::readSmallText(files::joinPath(files::joinPath(*directory, appDirectory), seatFile));
  if (!seat) return std::nullopt;
  const std::vector<std::string_view> lines = text::split(*seat, '\n');
  if (lines.size() < 2) return std::nullopt;
  const std::string_view path = unicode::trim(lines[1]);
  if (path.empty()) return std::nullopt;
  return std::string(path);
}

std::string BridgeDiscovery::siblingSocketPath(std::string_view path, Kind kind) {
  while (path.ends_with('/')) path.remove_suffix(1);
  const std::string_view name = files::lastComponent(path);
  const std::size_t dash = name.find('-');
  if (dash == std::string_view::npos) return {};
  const std::string_view directory = path.substr(0, path.size() - name.size());
  return text::cat(directory, json::wordFor(kind), name.substr(dash));
}

std::vector<BridgeDiscovery::Candidate> BridgeDiscovery::candidates(Kind kind, const Where& where) {
  const std::optional<std::string> root = where.directory();
  if (!root) return {};
  const std::string prefix = text::cat(json::wordFor(kind), "-");
  std::vector<DatedCandidate> found;
  for (const files::Entry& entry : files::list(*root, isOfTheApp))
    if (entry.isDirectory) appendCandidates(found, files::joinPath(*root, entry.name), prefix);

  std::ranges::stable_sort(found, std::ranges::greater{}, &DatedCandidate::date);
  std::vector<Candidate> candidates;
  candidates.reserve(found.size());
  for (DatedCandidate& dated : found) candidates.push_back(std::move(dated.candidate));
  return candidates;
}

std::optional<std::string> BridgeDiscovery::liveSocketPath(Kind kind, const Where& where,
                                                           const Probe& probe) {
  std::vector<std::string> live;
  for (const Candidate& candidate : candidates(kind, where))
    if (probe(candidate.socketPath)) live.push_back(candidate.socketPath);
  if (live.size() != 1) return std::nullopt;
  return live.front();
}

std::string BridgeDiscovery::tokenPathFor(std::string_view socketPath) {
  return files::withExtension(socketPath, "token");
}

bool BridgeDiscovery::acceptsConnection(const std::string& socketPath) {
  return listensAt(socketPath, probePatience);
}

}  // namespace quillpost
