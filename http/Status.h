// The status codes of HTTP (RFC 9110, 15; 429 and 431: RFC 6585) that somebody here sends or
// understands. Constants and no enumeration: a server may answer with any number of three digits.

#ifndef ORVEX_HTTP_STATUS_H_
#define ORVEX_HTTP_STATUS_H_

#include <string_view>

namespace http {

inline constexpr unsigned kStatusContinue = 100;
inline constexpr unsigned kStatusOk = 200;
inline constexpr unsigned kStatusNoContent = 204;
inline constexpr unsigned kStatusNotModified = 304;
inline constexpr unsigned kStatusBadRequest = 400;
inline constexpr unsigned kStatusUnauthorized = 401;
inline constexpr unsigned kStatusForbidden = 403;
inline constexpr unsigned kStatusNotFound = 404;
inline constexpr unsigned kStatusMethodNotAllowed = 405;
inline constexpr unsigned kStatusRequestTimeout = 408;
inline constexpr unsigned kStatusContentTooLarge = 413;
inline constexpr unsigned kStatusUnsupportedMediaType = 415;
inline constexpr unsigned kStatusExpectationFailed = 417;
inline constexpr unsigned kStatusTooManyRequests = 429;
inline constexpr unsigned kStatusHeaderFieldsTooLarge = 431;
inline constexpr unsigned kStatusInternalServerError = 500;
inline constexpr unsigned kStatusNotImplemented = 501;
inline constexpr unsigned kStatusServiceUnavailable = 503;
inline constexpr unsigned kStatusVersionNotSupported = 505;

// Returns the words for a status, "Not Found"; "Unknown" for one that is not among these.
[[nodiscard]] std::string_view reasonOf(unsigned status);

// Returns whether a status only announces the one that answers the request.
[[nodiscard]] constexpr bool isInterim(unsigned status) {
  return status < kStatusOk;
}

// Returns whether an answer of this status may have a body, and says how long it is.
[[nodiscard]] constexpr bool hasBody(unsigned status) {
  return !isInterim(status) && status != kStatusNoContent && status != kStatusNotModified;
}

}  // namespace http

#endif  // ORVEX_HTTP_STATUS_H_
