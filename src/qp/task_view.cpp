#include "qp/task_view.h"

#include "base/text.h"
#include "qp/options.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace quillpost {
namespace {

using boost::json::array;

/// Where words are looked for.
constexpr std::string_view searched[] = {"id", "title", "summary", "lastProgress"};

bool hasWord(const json::TreeObject& task, std::string_view word) {
  return std::ranges::any_of(searched, [&](std::string_view key) {
    const std::string text = text::lowered(json::findText(task, key).value_or(""));
    return text.find(word) != std::string::npos;
  });
}

bool isWanted(const json::Tree& element, const TaskView& view) {
  const json::TreeObject* const task = element.if_object();
  return task != nullptr && std::ranges::all_of(view.words, [&](const std::string& word) {
           return hasWord(*task, word);
         });
}

/// The task with the fields asked for, in the order in which it has them.
json::Tree withFields(const json::Tree& element, const TaskView& view) {
  json::TreeObject kept;
  for (const auto& member : element.get_object())
    if (std::ranges::find(view.fields, std::string_view(member.key())) != view.fields.end())
      kept.emplace(member.key(), member.value());
  return kept;
}

/// Takes from a bucket what the view leaves out. Gives how many tasks the limit cut off.
int64_t narrow(array& bucket, const TaskView& view) {
  if (!view.words.empty()) {
    array wanted;
    for (json::Tree& element : bucket)
      if (isWanted(element, view)) wanted.push_back(std::move(element));
    bucket = std::move(wanted);
  }
  int64_t cut = 0;
  if (view.limit && std::cmp_greater(bucket.size(), *view.limit)) {
    const auto kept = static_cast<std::size_t>(*view.limit);
    cut = static_cast<int64_t>(bucket.size() - kept);
    bucket.resize(kept);
  }
  if (!view.fields.empty())
    for (json::Tree& element : bucket)
      if (element.is_object()) element = withFields(element, view);
  return cut;
}

bool leavesAll(const TaskView& view) {
  return !view.limit && view.bucket.empty() && view.fields.empty() && view.words.empty();
}

}  // namespace

TaskView taskViewFrom(const Arguments& options, bool asJson) {
  TaskView view;
  view.limit = options.integer("limit");
  if (view.limit) view.limit = std::max(*view.limit, int64_t{0});
  const bool isCut = !asJson && !options.flag("all").value_or(false);
  if (!view.limit && isCut) view.limit = plainBucketLimit;
  view.bucket = options.text("bucket").value_or("");
  view.fields = options.texts("fields").value_or(std::vector<std::string>());
  const std::string words = text::lowered(options.text("grep").value_or(""));
  for (const std::string_view word : text::split(words, ' '))
    if (!word.empty()) view.words.emplace_back(word);
  return view;
}

ViewedTasks viewed(const std::string& backlog, const TaskView& view) {
  if (leavesAll(view)) return {};
  std::optional<json::Tree> tree = json::parse(backlog);
  if (!tree || !tree->is_object()) return {};
  json::TreeObject& object = tree->get_object();
  ViewedTasks result;
  bool isChanged = !view.bucket.empty() || !view.fields.empty() || !view.words.empty();
  for (const std::string_view name : bucketNames) {
    json::Tree* const bucket = object.if_contains(name);
    if (bucket == nullptr || !bucket->is_array()) continue;
    if (!view.bucket.empty() && name != view.bucket) {
      // Not erased by exchange with the last member: the members keep their order.
      object.stable_erase(name);
      continue;
    }
    const int64_t cut = narrow(bucket->get_array(), view);
    if (cut == 0) continue;
    isChanged = true;
    result.leftOut += text::cat("… ", cut, " more under ", name, ": qp tasks --all\n");
  }
  if (!isChanged) return {};
  json::appendTree(result.json.emplace(), *tree);
  return result;
}

}  // namespace quillpost
