#include "render/delivery.h"

#include "render/task.h"
#include "render/texts/replies.h"

namespace quillpost {

void addDelivery(json::Object& out, std::span<const TeamworkSquadMessage> messages) {
  if (messages.empty()) return;
  out.list("messages", messages, addMessage).add("messagesNote", texts::messagesNote);
}

void appendDelivery(json::EscapedText& out, std::span<const TeamworkSquadMessage> messages) {
  if (messages.empty()) return;
  out.append("\n\n");
  json::appendList(out, messages, addMessage);
  out.append("\n\n").append(texts::messagesNote);
}

}  // namespace quillpost
