#pragma once

// Rows by id that remember what they were when they were last saved, and can be found by other
// words than their ids.

#include "board/rules/index.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillpost::board {

/// Rows of one kind in the order of their ids. What is handed out to be changed is marked as
/// touched, so that saving looks at no other row, and can be put back as it was.
template <class Row>
class Table {
 public:
  using Rows = std::map<std::string, Row, std::less<>>;

  /// The row of that id, to be read; null when there is none.
  const Row* find(std::string_view id) const {
    const auto found = rows_.find(id);
    return found == rows_.end() ? nullptr : &found->second;
  }
  /// The same, to be changed. It stays where it is until it is removed.
  Row* touch(std::string_view id) {
    const auto found = rows_.find(id);
    if (found == rows_.end()) return nullptr;
    remember(found->first, &found->second);
    return &found->second;
  }

  auto begin() const { return rows_.begin(); }
  auto end() const { return rows_.end(); }
  std::size_t size() const { return rows_.size(); }
  bool empty() const { return rows_.empty(); }

  /// The rows whose ids begin with this, in order.
  std::vector<const Row*> under(std::string_view prefix) const {
    std::vector<const Row*> found;
    for (auto at = rows_.lower_bound(prefix); at != rows_.end(); ++at) {
      if (!at->first.starts_with(prefix)) break;
      found.push_back(&at->second);
    }
    return found;
  }
  /// The rows from the first one whose id is not before this.
  auto from(std::string_view id) const { return rows_.lower_bound(id); }

  /// The rows that have a key, in the order of their ids.
  std::vector<const Row*> with(Key key) const {
    std::vector<const Row*> found;
    for (auto at = index_.from(key); at != index_.end() && at->isOf(key); ++at)
      if (!before_.contains(at->id)) found.push_back(find(at->id));
    addTouched(found, [&](Key other) { return other == key; });
    return found;
  }
  /// Whether any row has a key.
  bool has(Key key) const {
    for (auto at = index_.from(key); at != index_.end() && at->isOf(key); ++at)
      if (!before_.contains(at->id)) return true;
    return std::ranges::any_of(before_, [&](const auto& entry) {
      const Row* row = find(entry.first);
      return row != nullptr && hasKey(*row, [&](Key other) { return other == key; });
    });
  }
  /// The rows with a key in this index whose word is not after `word`, in the order of their ids.
  std::vector<const Row*> upTo(std::string_view index, std::string_view word) const {
    std::vector<const Row*> found;
    for (auto at = index_.from({index, {}}); at != index_.end(); ++at) {
      if (at->index != index || word < std::string_view(at->word)) break;
      if (!before_.contains(at->id)) found.push_back(find(at->id));
    }
    std::ranges::sort(found, {}, &Row::id);
    addTouched(found, [&](Key other) { return other.index == index && other.word <= word; });
    return found;
  }
  /// The first word in an index; nothing when no row has one.
  std::optional<std::string> firstWord(std::string_view index) const {
    std::optional<std::string> first;
    for (auto at = index_.from({index, {}}); at != index_.end(); ++at) {
      if (at->index != index) break;
      if (before_.contains(at->id)) continue;
      first = at->word;
      break;
    }
    for (const auto& [id, before] : before_) {
      const Row* row = find(id);
      if (row == nullptr) continue;
      Keys<Row>::visit(*row, [&](Key key) {
        if (key.index == index && (!first || key.word < *first)) first = std::string(key.word);
      });
    }
    return first;
  }

  /// Adds a row, or replaces the one of the same id.
  Row& put(Row row) {
    const auto found = rows_.find(row.id);
    remember(row.id, found == rows_.end() ? nullptr : &found->second);
    const std::string id = row.id;
    return rows_.insert_or_assign(id, std::move(row)).first->second;
  }
  /// Adds a row as it was saved. Of rows that come in the order of their ids each costs the same.
  void load(Row row) {
    const std::string id = row.id;
    index_.add(rows_.insert_or_assign(rows_.end(), id, std::move(row))->second);
  }
  /// Takes the row of that id away; nothing when there is none.
  void remove(std::string_view id) {
    const auto found = rows_.find(id);
    if (found == rows_.end()) return;
    remember(found->first, &found->second);
    rows_.erase(found);
  }

  /// Calls `visit(id, row)` for each row that is not as it was saved; the row is null when it was
  /// removed.
  template <class Visit>
  void forEachUnsaved(Visit&& visit) const {
    for (const auto& [id, before] : before_) {
      const Row* row = find(id);
      const bool isSame = row == nullptr ? !before : before && *before == *row;
      if (!isSame) visit(id, row);
    }
  }
  bool isSaved() const {
    bool isSaved = true;
    forEachUnsaved([&](const std::string&, const Row*) { isSaved = false; });
    return isSaved;
  }

  /// Notes that everything has been saved as it is now.
  void settle() {
    for (const auto& [id, before] : before_) {
      if (before) index_.drop(*before);
      if (const Row* row = find(id)) index_.add(*row);
    }
    before_.clear();
  }
  /// Puts everything back as it was last saved.
  void revert() {
    for (auto& [id, before] : before_) {
      if (before) {
        rows_.insert_or_assign(id, *std::move(before));
      } else {
        rows_.erase(id);
      }
    }
    before_.clear();
  }
  /// Lets go of the first rows, all but `count` of them, without removing them from what is saved.
  /// Only of a settled table.
  void forgetAllBut(std::size_t count) {
    while (rows_.size() > count) rows_.erase(rows_.begin());
  }

 private:
  void remember(const std::string& id, const Row* row) {
    const auto [at, isFirst] = before_.try_emplace(id);
    if (isFirst && row != nullptr) at->second = *row;
  }

  /// Adds the touched rows with a key that matches, and puts the rows in order.
  template <class Matches>
  void addTouched(std::vector<const Row*>& found, Matches&& matches) const {
    const std::size_t settled = found.size();
    for (const auto& [id, before] : before_) {
      const Row* row = find(id);
      if (row != nullptr && hasKey(*row, matches)) found.push_back(row);
    }
    if (found.size() > settled) std::ranges::sort(found, {}, &Row::id);
  }
  Rows rows_;
  /// The touched rows as they were saved, by id; nothing for one that is new.
  std::map<std::string, std::optional<Row>, std::less<>> before_;
  /// The keys of all rows as they were saved.
  Index index_;
};

}  // namespace quillpost::board
