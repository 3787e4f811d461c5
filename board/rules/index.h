#pragma once

// Finding rows by other words than their ids.

#include <set>
#include <string>
#include <string_view>
#include <tuple>

namespace quillpost::board {

/// A word under which rows are found: which of the indices of a table, and the word in it.
struct Key {
  /// A literal, since entries keep no copy of it.
  std::string_view index;
  std::string_view word;

  bool operator==(const Key&) const = default;
};

/// The keys of a row, specialised beside the row: `visit(row, found)` calls `found(Key)` for each.
/// Rows have none unless they say so.
template <class Row>
struct Keys {
  template <class Found>
  static void visit(const Row&, Found&&) {}
};

/// Whether any key of a row matches.
template <class Row, class Matches>
bool hasKey(const Row& row, Matches&& matches) {
  bool found = false;
  Keys<Row>::visit(row, [&](Key key) { found |= matches(key); });
  return found;
}

/// The keys of many rows, in order.
class Index {
 public:
  /// One key of one row.
  struct Entry {
    std::string_view index;
    std::string word;
    std::string id;

    bool isOf(Key key) const { return index == key.index && word == key.word; }
  };

  template <class Row>
  void add(const Row& row) {
    Keys<Row>::visit(row, [&](Key key) {
      entries_.insert({key.index, std::string(key.word), row.id});
    });
  }
  template <class Row>
  void drop(const Row& row) {
    Keys<Row>::visit(row, [&](Key key) {
      entries_.erase({key.index, std::string(key.word), row.id});
    });
  }

  /// The entries from the first one that is not before this key.
  auto from(Key key) const { return entries_.lower_bound(key); }
  auto end() const { return entries_.end(); }

 private:
  struct InOrder {
    using is_transparent = void;
    bool operator()(const Entry& a, const Entry& b) const {
      return std::tie(a.index, a.word, a.id) < std::tie(b.index, b.word, b.id);
    }
    bool operator()(const Entry& a, const Key& b) const {
      return std::tuple(a.index, std::string_view(a.word)) < std::tuple(b.index, b.word);
    }
  };

  std::set<Entry, InOrder> entries_;
};

}  // namespace quillpost::board
