#pragma once

// Records to JSON and back. The only place where the codecs are made; everyone else calls these.

#include <optional>
#include <string>
#include <string_view>

#include "model/human_ask.h"
#include "model/request.h"
#include "model/response.h"

namespace quillpost {

/// The request as one compact JSON object. Nothing when a text in it is not UTF-8, as one that came
/// from the environment may not be.
std::optional<std::string> encodeRequest(const TeamworkRequest& request);

/// The response that one reply holds; nothing when it is not JSON, its kind is unknown, a required
/// key is missing or a value has the wrong type, anywhere.
std::optional<TeamworkResponse> decodeResponse(std::string_view reply);

/// The other two directions, for a program that plays the app.
std::optional<TeamworkRequest> decodeRequest(std::string_view line);
std::optional<std::string> encodeResponse(const TeamworkResponse& response);

/// An ask's payload as compact JSON with its keys sorted.
std::string encodeHumanAsk(const TeamworkHumanAsk::Payload& payload);

}  // namespace quillpost
