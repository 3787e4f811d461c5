#include "base/nearest.h"

#include "base/text.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace quillpost {
namespace {

// Nobody mistypes a longer word, and what compares two takes the product of their lengths.
constexpr std::size_t longestWord = 64;

std::string plain(std::string_view word) {
  std::string out = text::lowered(word);
  std::ranges::replace(out, '_', '-');
  return out;
}

/// How many letters must be added, lost, changed or swapped with their neighbour.
std::size_t distanceBetween(std::string_view a, std::string_view b) {
  std::vector<std::size_t> before;
  std::vector<std::size_t> last(b.size() + 1);
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    before = last;
    last = row;
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t change = a[i - 1] == b[j - 1] ? 0 : 1;
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + change});
      const bool isSwap = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (isSwap) row[j] = std::min(row[j], before[j - 2] + 1);
    }
  }
  return row[b.size()];
}

}  // namespace

std::string_view nearestWord(std::string_view written, std::span<const std::string_view> words) {
  if (written.empty() || written.size() > longestWord) return {};
  const std::string wanted = plain(written);
  std::string_view nearest;
  std::size_t least = 0;
  for (const std::string_view word : words) {
    const std::size_t distance = distanceBetween(wanted, plain(word));
    const std::size_t most = std::max<std::size_t>(1, word.size() / 3);
    if (distance > most || (!nearest.empty() && distance >= least)) continue;
    nearest = word;
    least = distance;
  }
  return nearest;
}

}  // namespace quillpost
