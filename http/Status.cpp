#include "http/Status.h"

#include <algorithm>
#include <iterator>

namespace http {
namespace {

struct Reason {
  unsigned status;
  std::string_view text;
};

constexpr Reason kReasons[] = {
    {kStatusContinue, "Continue"},
    {kStatusOk, "OK"},
    {kStatusNoContent, "No Content"},
    {kStatusNotModified, "Not Modified"},
    {kStatusBadRequest, "Bad Request"},
    {kStatusUnauthorized, "Unauthorized"},
    {kStatusForbidden, "Forbidden"},
    {kStatusNotFound, "Not Found"},
    {kStatusMethodNotAllowed, "Method Not Allowed"},
    {kStatusRequestTimeout, "Request Timeout"},
    {kStatusContentTooLarge, "Content Too Large"},
    {kStatusUnsupportedMediaType, "Unsupported Media Type"},
    {kStatusExpectationFailed, "Expectation Failed"},
    {kStatusTooManyRequests, "Too Many Requests"},
    {kStatusHeaderFieldsTooLarge, "Request Header Fields Too Large"},
    {kStatusInternalServerError, "Internal Server Error"},
    {kStatusNotImplemented, "Not Implemented"},
    {kStatusServiceUnavailable, "Service Unavailable"},
    {kStatusVersionNotSupported, "HTTP Version Not Supported"},
};

}  // namespace

std::string_view reasonOf(unsigned status) {
  const auto* const found =
      std::find_if(std::begin(kReasons), std::end(kReasons),
                   [&](const Reason& reason) { return reason.status == status; });
  return found != std::end(kReasons) ? found->text : std::string_view("Unknown");
}

}  // namespace http
