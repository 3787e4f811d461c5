#include "model/coding.h"

#include "base/unicode.h"
#include "json/decoder.h"
#include "json/record.h"

#include <utility>

namespace quillpost {
namespace {

template <class T>
std::optional<std::string> encodeValid(const T& record) {
  std::string json = json::encode(record);
  if (!unicode::isValid(json)) return std::nullopt;
  return json;
}

}  // namespace

std::optional<std::string> encodeRequest(const TeamworkRequest& request) {
  return encodeValid(request);
}

std::optional<TeamworkResponse> decodeResponse(std::string reply) {
  return json::decode<TeamworkResponse>(std::move(reply));
}

std::optional<TeamworkRequest> decodeRequest(std::string line) {
  return json::decode<TeamworkRequest>(std::move(line));
}

std::optional<std::string> encodeResponse(const TeamworkResponse& response) {
  return encodeValid(response);
}

std::string encodeHumanAsk(const TeamworkHumanAsk::Payload& payload) {
  return json::encode(payload);
}

}  // namespace quillpost
