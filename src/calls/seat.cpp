#include "calls/seat.h"

#include <utility>

namespace quillpost {

TeamworkRequest requestFrom(const Seat& seat, std::string_view method) {
  TeamworkRequest request;
  request.token = seat.doors.bridge.currentToken();
  request.sessionID = seat.sessionID;
  request.method = method;
  return request;
}

std::optional<TeamworkResponse> send(const TeamworkRequest& request, Seat& seat) {
  Exchange exchange = seat.doors.bridge.send(request);
  seat.memory.took(exchange.bytes);
  return std::move(exchange.response);
}

}  // namespace quillpost
