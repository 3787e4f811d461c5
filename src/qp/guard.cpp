#include "qp/guard.h"

#include "base/display.h"
#include "base/text.h"
#include "qp/options.h"

#include <algorithm>
#include <filesystem>
#include <vector>

#include <fnmatch.h>

namespace quillpost {
namespace {

/// A task that somebody holds, as far as it matters here.
struct Holding {
  std::string task, title, owner;
  std::vector<std::string> resources;
};

/// The path without detours, such as "./", "//" and "a/..", and without a "/" at its end.
std::string plainPath(std::string_view path) {
  std::string plain = std::filesystem::path(path).lexically_normal().string();
  while (plain.size() > 1 && plain.ends_with('/')) plain.pop_back();
  return plain;
}

/// The pattern with "**/" standing for no folder at all, which it may.
std::string withoutFolders(std::string_view pattern) {
  constexpr std::string_view anyFolders = "**/";
  std::string out;
  while (!pattern.empty()) {
    const std::size_t at = std::min(pattern.find(anyFolders), pattern.size());
    out += pattern.substr(0, at);
    pattern.remove_prefix(std::min(at + anyFolders.size(), pattern.size()));
  }
  return out;
}

std::string textOf(const json::TreeObject& object, std::string_view key) {
  return std::string(json::findText(object, key).value_or(""));
}

/// The claimed tasks of a backlog, those in the caller's own bucket left out.
std::vector<Holding> holdingsIn(const std::string& backlog) {
  std::vector<Holding> holdings;
  const std::optional<json::Tree> tree = json::parse(backlog);
  if (!tree || !tree->is_object()) return holdings;
  for (const std::string_view name : bucketNames) {
    const json::Tree* const bucket = json::find(tree->get_object(), name);
    if (name == "yours" || bucket == nullptr || !bucket->is_array()) continue;
    for (const json::Tree& element : bucket->get_array()) {
      const json::TreeObject* const task = element.if_object();
      if (task == nullptr || json::findText(*task, "state") != "claimed") continue;
      holdings.push_back(
          {.task = textOf(*task, "id"),
           .title = textOf(*task, "title"),
           .owner = textOf(*task, "owner"),
           .resources = Arguments(*task).texts("resources").value_or(std::vector<std::string>())});
    }
  }
  return holdings;
}

/// Who is on the roster: the caller himself, and the names of the others.
struct Roster {
  std::string self;
  std::vector<std::pair<std::string, std::string>> handles;

  std::string nameOf(const std::string& owner) const {
    for (const auto& [id, handle] : handles)
      if (id == owner && !handle.empty()) return text::cat(handle, " (", owner, ")");
    return owner;
  }
};

Roster rosterIn(const std::string& agents) {
  Roster roster;
  const std::optional<json::Tree> tree = json::parse(agents);
  if (!tree || !tree->is_array()) return roster;
  for (const json::Tree& element : tree->get_array()) {
    const json::TreeObject* const agent = element.if_object();
    if (agent == nullptr) continue;
    const std::string id = textOf(*agent, "id");
    if (Arguments(*agent).flag("isSelf").value_or(false)) roster.self = id;
    roster.handles.emplace_back(id, textOf(*agent, "handle"));
  }
  return roster;
}

}  // namespace

bool coversPath(std::string_view resource, std::string_view path) {
  const std::string over = plainPath(resource);
  const std::string under = plainPath(path);
  if (over.empty() || under.empty()) return false;
  if (over == under || over == "." || under.starts_with(over + "/")) return true;
  // Without a flag "*" passes "/" too, as "**" is meant to.
  for (const std::string& pattern : {over, withoutFolders(over)})
    if (::fnmatch(pattern.c_str(), under.c_str(), 0) == 0) return true;
  // A path from the root, and a resource that is named from the folder of the work.
  const bool isAbsolute = under.starts_with('/') && !over.starts_with('/');
  return isAbsolute &&
         (under.ends_with("/" + over) || under.find("/" + over + "/") != std::string::npos);
}

Status guard(std::span<const std::string> paths, const Surroundings& around) {
  if (!paths.empty() && paths.front() == "--") paths = paths.subspan(1);
  if (paths.empty()) {
    around.console.errors.write("qp: guard wants a path\nusage: qp guard PATH...\n");
    return Status::misuse;
  }
  Desk desk(around);
  const ToolReply backlog = desk.call("list_tasks", {});
  std::vector<Holding> holdings = holdingsIn(backlog.text.json());
  const auto coversNone = [&](const Holding& holding) {
    return std::ranges::none_of(holding.resources, [&](const std::string& resource) {
      return std::ranges::any_of(
          paths, [&](const std::string& path) { return coversPath(resource, path); });
    });
  };
  std::erase_if(holdings, coversNone);
  if (holdings.empty()) return Status::done;

  const ToolReply agents = desk.call("list_agents", {});
  // Without a roster nobody knows which of the claims are the caller's own.
  if (agents.end != CallEnd::answered) return Status::done;
  const Roster roster = rosterIn(agents.text.json());
  bool isHeld = false;
  for (const Holding& holding : holdings) {
    if (holding.owner.empty() || holding.owner == roster.self) continue;
    isHeld = true;
    around.console.output.write(
        displayedInLine(text::cat(roster.nameOf(holding.owner), " holds ", holding.task, " (",
                                  holding.title, "): ", text::join(holding.resources, ", "))) +
        "\n");
  }
  return isHeld ? Status::refused : Status::done;
}

}  // namespace quillpost
