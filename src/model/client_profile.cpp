#include "model/client_profile.h"

#include "base/text.h"

#include <algorithm>
#include <string>

namespace quillpost {

TeamworkClientProfile::Profile TeamworkClientProfile::fromName(std::string_view clientName) {
  const std::string name = text::lowered(clientName);
  const auto isIt = [&](const ClientTraits& client) {
    // The last row's word is empty, and so in every name.
    return name.find(client.word) != std::string::npos ||
           (!client.whole.empty() && name == client.whole);
  };
  return std::ranges::find_if(clients, isIt)->profile;
}

}  // namespace quillpost
