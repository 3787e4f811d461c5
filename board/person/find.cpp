#include "board/person/find.h"

#include "base/text.h"
#include "base/unicode.h"
#include "board/person/show.h"
#include "board/rules/limits.h"
#include "board/rules/log.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace quillpost::board {

namespace {

/// How much is told of the passage where the words stand, in characters, and how much of it stands
/// before them, in bytes.
constexpr std::size_t excerptLength = 200;
constexpr std::size_t toldBefore = 60;

char small(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

/// The surroundings of the words in a text; empty when they do not stand there. The words have
/// small letters.
std::string placeIn(std::string_view whole, std::string_view words) {
  const auto* const found =
      std::search(whole.begin(), whole.end(), words.begin(), words.end(),
                  [](char letter, char wanted) { return small(letter) == wanted; });
  if (found == whole.end()) return {};
  const auto at = static_cast<std::size_t>(found - whole.begin());
  std::size_t first = at > toldBefore ? at - toldBefore : 0;
  // Not in the middle of a character.
  constexpr unsigned char followers = 0xC0;
  constexpr unsigned char follower = 0x80;
  while (first > 0 && (static_cast<unsigned char>(whole[first]) & followers) == follower) --first;
  // What is told of a long text is cut before it is made into one line.
  const std::string_view near = whole.substr(first, excerptLength * bytesOfCharacter);
  return text::cat(first > 0 ? "\u2026" : "", cutWithMark(oneLine(near), excerptLength));
}

/// One thing on which the words stand, if they do.
struct Passage {
  std::string_view where;
  std::string text;
};

Passage passageOf(const Board& board, const Task& task, std::string_view words) {
  if (std::string text = placeIn(task.id, words); !text.empty()) return {"id", std::move(text)};
  if (std::string text = placeIn(task.title, words); !text.empty()) {
    return {"title", std::move(text)};
  }
  if (std::string text = placeIn(briefOf(board, task.id), words); !text.empty()) {
    return {"brief", std::move(text)};
  }
  const std::vector<const LogLine*> lines = linesOf(board, task.id);
  for (std::size_t i = lines.size(); i-- > 0;)
    if (std::string text = placeIn(lines[i]->text, words); !text.empty()) {
      return {"log", std::move(text)};
    }
  return {};
}

Passage passageOf(const TeamworkDiscussion& debate, std::string_view words) {
  if (std::string text = placeIn(debate.id, words); !text.empty()) return {"id", std::move(text)};
  if (std::string text = placeIn(debate.question, words); !text.empty()) {
    return {"question", std::move(text)};
  }
  for (std::size_t i = debate.volleys.size(); i-- > 0;)
    if (std::string text = placeIn(debate.volleys[i].body, words); !text.empty()) {
      return {"volley", std::move(text)};
    }
  return {};
}

}  // namespace

Sheet foundSheet(const Board& board, std::string_view words, Moment at) {
  const std::string wanted = text::lowered(unicode::trim(words));
  Section found{"found", {"id", "state", "title", "where", "text"}, {}};
  if (!wanted.empty()) {
    for (auto row = board.tasks.end();
         row != board.tasks.begin() && found.rows.size() < foundAtMost;) {
      const Task& task = (--row)->second;
      const Passage passage = passageOf(board, task, wanted);
      if (!passage.where.empty())
        found.add(task.id, stateOf(board, task), task.title, passage.where, passage.text);
    }
    for (auto row = board.discussions.end();
         row != board.discussions.begin() && found.rows.size() < foundAtMost;) {
      const TeamworkDiscussion& debate = (--row)->second;
      const Passage passage = passageOf(debate, wanted);
      if (!passage.where.empty())
        found.add(debate.id, debate.state, debate.question, passage.where, passage.text);
    }
  }
  return {at.nowMs, board.counted().rev, {std::move(found)}};
}

}  // namespace quillpost::board
