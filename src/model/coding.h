#pragma once

// Records to JSON and back. The only place where the codecs are made; everyone else calls these.

#include "model/human_ask.h"
#include "model/request.h"
#include "model/response.h"

#include <optional>
#include <string>
#include <string_view>

namespace quillpost {

/// The request as one compact JSON object. Nothing when a text in it is not UTF-8, which one that
/// came from the environment need not be.
std::optional<std::string> encodeRequest(const TeamworkRequest& request);

/// The response that one reply holds; nothing when it is not JSON, its kind is unknown, a required
/// key is missing or a value has the wrong type, anywhere.
std::optional<TeamworkResponse> decodeResponse(std::string reply);

/// The request that one line holds, for a program that plays the app; nothing when it is not one.
std::optional<TeamworkRequest> decodeRequest(std::string line);

/// The response as one compact JSON object, for a program that plays the app. Nothing when a text
/// in it is not UTF-8.
std::optional<std::string> encodeResponse(const TeamworkResponse& response);

/// The same without what a missing key says as well, for answers of many tasks.
std::optional<std::string> encodeSparsely(const TeamworkResponse& response);

/// An ask's payload as compact JSON with its keys sorted. Its texts must be UTF-8.
std::string encodeHumanAsk(const TeamworkHumanAsk::Payload& payload);

}  // namespace quillpost
