#include "render/discussion.h"

#include "base/text.h"
#include "render/texts/discussion.h"
#include "tools/tool_name.h"

namespace quillpost {
namespace {

constexpr ToolName openDiscussion = "open_discussion";
constexpr ToolName replyDiscussion = "reply_discussion";
constexpr ToolName resolveDiscussion = "resolve_discussion";

void addVolleys(json::Array& out, const TeamworkDiscussion& discussion) {
  for (const TeamworkDiscussion::Volley& volley : discussion.volleys)
    out.add(text::cat("[", volley.author, "] "), volley.body);
}

}  // namespace

void addDiscussion(json::Object& out, const TeamworkDiscussion& discussion) {
  out.add("id", discussion.id).add("state", discussion.state);
  out.add("question", discussion.question);
  out.add("addressedTo", discussion.addressedTo);
  out.array("volleys", [&](json::Array& volleys) { addVolleys(volleys, discussion); });
  out.add("owingParties", discussion.owingParties);
  out.add("yourTurn", discussion.yourTurn);
  out.add("volleysSinceHuman", discussion.volleysSinceHuman);
  out.add("roundBudget", texts::roundBudget(discussion.volleysSinceHuman));
  out.addText("resolution", discussion.resolution);
  out.addIf("escalated", discussion.escalated);
}

std::optional<std::string> discussionHint(std::string_view verb, std::string_view discussionID,
                                          bool boardLevel) {
  const texts::DiscussionWords& words = boardLevel ? texts::boardDiscussion : texts::taskDiscussion;
  if (verb == openDiscussion) return texts::discussionOpened(discussionID, words);
  if (verb == replyDiscussion) return texts::volleyPosted(words);
  if (verb == resolveDiscussion) return std::string(words.resolved);
  return std::nullopt;
}

}  // namespace quillpost
