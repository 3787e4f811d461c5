#include "qp/task_view.h"

#include "base/text.h"
#include "json/slices.h"
#include "qp/options.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace quillpost {
namespace {

/// Where words are looked for.
constexpr std::string_view searched[] = {"id", "title", "summary", "lastProgress"};

bool hasWord(const json::TreeObject& task, std::string_view word) {
  return std::ranges::any_of(searched, [&](std::string_view key) {
    const std::string text = text::lowered(json::findText(task, key).value_or(""));
    return text.find(word) != std::string::npos;
  });
}

/// The task with the fields asked for, in the order in which it has them.
json::Tree withFields(const json::TreeObject& task, const TaskView& view) {
  json::TreeObject kept;
  for (const auto& member : task)
    if (std::ranges::find(view.fields, std::string_view(member.key())) != view.fields.end())
      kept.emplace(member.key(), member.value());
  return kept;
}

/// A task as it is shown: with its fields that are wanted; nothing when it lacks a word.
std::optional<std::string> shown(std::string_view task, const TaskView& view) {
  if (view.words.empty() && view.fields.empty()) return std::string(task);
  const std::optional<json::Tree> tree = json::parse(task);
  const json::TreeObject* const object = tree ? tree->if_object() : nullptr;
  if (object == nullptr) return std::nullopt;
  const bool isWanted = std::ranges::all_of(
      view.words, [&](const std::string& word) { return hasWord(*object, word); });
  if (!isWanted) return std::nullopt;
  if (view.fields.empty()) return std::string(task);
  std::string narrowed;
  json::appendTree(narrowed, withFields(*object, view));
  return narrowed;
}

/// Writes what the view leaves of a bucket. Gives how many tasks the limit cut off.
int64_t narrow(std::string_view bucket, const TaskView& view, std::string& out) {
  std::vector<std::string_view> tasks = json::elementsOf(bucket);
  // Only words have to be looked for in every task.
  const bool cutsBlindly = view.words.empty() && view.limit;
  const auto limit = static_cast<std::size_t>(view.limit.value_or(INT64_MAX));
  int64_t cut = 0;
  if (cutsBlindly && tasks.size() > limit) {
    cut = text::countOf(tasks) - *view.limit;
    tasks.resize(limit);
  }
  std::size_t kept = 0;
  out += '[';
  for (const std::string_view task : tasks) {
    const std::optional<std::string> text = shown(task, view);
    if (!text) continue;
    if (kept == limit) {
      ++cut;
      continue;
    }
    if (kept++ > 0) out += ',';
    out += *text;
  }
  out += ']';
  return cut;
}

bool leavesAll(const TaskView& view) {
  return !view.limit && view.bucket.empty() && view.fields.empty() && view.words.empty();
}

}  // namespace

TaskView taskViewFrom(const Arguments& options, bool asJson) {
  TaskView view;
  const bool showsAll = options.flag("all").value_or(false);
  if (!showsAll) view.limit = options.integer("limit");
  if (view.limit) view.limit = std::max(*view.limit, int64_t{0});
  if (!view.limit && !asJson && !showsAll) view.limit = plainBucketLimit;
  view.bucket = options.text("bucket").value_or("");
  view.fields = options.texts("fields").value_or(std::vector<std::string>());
  const std::string words = text::lowered(options.text("grep").value_or(""));
  for (const std::string_view word : text::split(words, ' '))
    if (!word.empty()) view.words.emplace_back(word);
  return view;
}

ViewedTasks viewed(std::string_view backlog, const TaskView& view) {
  if (leavesAll(view)) return {};
  const std::vector<json::MemberSlice> members = json::membersOf(backlog);
  if (members.empty()) return {};
  ViewedTasks result;
  std::vector<std::string> unseen = view.fields;
  bool isAnyShown = false;
  bool isChanged = !view.bucket.empty() || !view.fields.empty() || !view.words.empty();
  std::string out = "{";
  for (const auto& [name, value] : members) {
    const bool isBucket =
        std::ranges::find(bucketNames, name) != bucketNames.end() && value.starts_with('[');
    if (isBucket && !view.bucket.empty() && name != view.bucket) continue;
    out += text::cat(out.size() > 1 ? "," : "", "\"", name, "\":");
    if (!isBucket) {
      out += value;
      continue;
    }
    const std::size_t begin = out.size();
    const int64_t cut = narrow(value, view, out);
    isAnyShown = isAnyShown || out.size() > begin + std::string_view("[]").size();
    // A quote inside a text has a backslash before it, so that only a key looks like one.
    std::erase_if(unseen, [&](const std::string& field) {
      return out.find(text::cat("\"", field, "\":"), begin) != std::string::npos;
    });
    if (cut == 0) continue;
    isChanged = true;
    result.leftOut += text::cat("… ", cut, " more under ", name, ": qp tasks --all\n");
  }
  if (isAnyShown && !unseen.empty())
    result.leftOut += text::cat("… no task here has ", text::join(unseen, " or "), "\n");
  if (isChanged) result.json = std::move(out) + "}";
  return result;
}

}  // namespace quillpost
