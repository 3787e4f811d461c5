#include "calls/seat.h"

namespace quillpost {

TeamworkRequest requestFrom(const Seat& seat, std::string_view method) {
  TeamworkRequest request;
  request.token = seat.doors.bridge.currentToken();
  request.sessionID = seat.sessionID;
  request.method = method;
  return request;
}

}  // namespace quillpost
