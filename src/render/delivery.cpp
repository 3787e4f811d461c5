#include "render/delivery.h"

#include "render/task.h"
#include "render/texts/replies.h"

namespace quillpost {

void addDelivery(json::Object& out, std::span<const TeamworkSquadMessage> messages) {
  if (messages.empty()) return;
  {
    json::Array list = out.array("messages");
    addMessages(list, messages);
  }
  out.add("messagesNote", texts::messagesNote);
}

void appendDelivery(json::EscapedText& out, std::span<const TeamworkSquadMessage> messages) {
  if (messages.empty()) return;
  out.append("\n\n");
  {
    json::Array list(out);
    addMessages(list, messages);
  }
  out.append("\n\n").append(texts::messagesNote);
}

}  // namespace quillpost
