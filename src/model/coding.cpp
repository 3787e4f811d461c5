#include "model/coding.h"

#include "base/unicode.h"
#include "json/decoder.h"
#include "json/record.h"

#include <utility>

namespace quillpost {
namespace {

std::optional<std::string> unlessInvalid(std::string json) {
  if (!unicode::isValid(json)) return std::nullopt;
  return json;
}

}  // namespace

std::optional<std::string> encodeRequest(const TeamworkRequest& request) {
  return unlessInvalid(json::encode(request));
}

std::optional<TeamworkResponse> decodeResponse(std::string reply) {
  return json::decode<TeamworkResponse>(std::move(reply));
}

std::optional<TeamworkRequest> decodeRequest(std::string line) {
  return json::decode<TeamworkRequest>(std::move(line));
}

std::optional<std::string> encodeResponse(const TeamworkResponse& response) {
  return unlessInvalid(json::encode(response));
}

std::optional<std::string> encodeSparsely(const TeamworkResponse& response) {
  return unlessInvalid(json::encode<json::Unsaid::omitted>(response));
}

std::string encodeHumanAsk(const TeamworkHumanAsk::Payload& payload) {
  return json::encode(payload);
}

}  // namespace quillpost
