#pragma once

// Rows by id that remember which of them have changed.

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace quillpost::board {

/// Rows of one kind in the order of their ids. They are read freely and changed only through `put`,
/// `edit` and `remove`, so that no change can escape what is saved.
template <class Row>
class Table {
 public:
  using Rows = std::map<std::string, Row, std::less<>>;

  /// The row of that id; null when there is none.
  const Row* find(std::string_view id) const {
    const auto found = rows_.find(id);
    return found == rows_.end() ? nullptr : &found->second;
  }

  auto begin() const { return rows_.begin(); }
  auto end() const { return rows_.end(); }
  std::size_t size() const { return rows_.size(); }
  bool empty() const { return rows_.empty(); }

  /// Adds a row, or replaces the one of the same id.
  Row& put(Row row) {
    changed_.insert(row.id);
    const std::string id = row.id;
    return rows_.insert_or_assign(id, std::move(row)).first->second;
  }
  /// The row itself, to be changed. `row` is one of this table's.
  Row& edit(const Row& row) {
    changed_.insert(row.id);
    return rows_.find(row.id)->second;
  }
  /// Takes the row of that id away; nothing when there is none.
  void remove(const std::string& id) {
    if (rows_.erase(id) > 0) changed_.insert(id);
  }

  /// The ids of the rows that were added, changed or removed since `settle`.
  const std::set<std::string>& changed() const { return changed_; }
  void settle() { changed_.clear(); }

 private:
  Rows rows_;
  std::set<std::string> changed_;
};

}  // namespace quillpost::board
