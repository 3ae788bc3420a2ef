#include "http/Answer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <iterator>

namespace http {
namespace {

struct Reason {
  unsigned status;
  std::string_view text;
};

constexpr Reason kReasons[] = {
    {200, "OK"},
    {201, "Created"},
    {202, "Accepted"},
    {204, "No Content"},
    {301, "Moved Permanently"},
    {302, "Found"},
    {304, "Not Modified"},
    {400, "Bad Request"},
    {401, "Unauthorized"},
    {403, "Forbidden"},
    {404, "Not Found"},
    {405, "Method Not Allowed"},
    {406, "Not Acceptable"},
    {408, "Request Timeout"},
    {411, "Length Required"},
    {413, "Content Too Large"},
    {414, "URI Too Long"},
    {415, "Unsupported Media Type"},
    {417, "Expectation Failed"},
    {429, "Too Many Requests"},
    {431, "Request Header Fields Too Large"},
    {500, "Internal Server Error"},
    {501, "Not Implemented"},
    {503, "Service Unavailable"},
    {505, "HTTP Version Not Supported"},
};

constexpr std::string_view kEndings[] = {"", "Connection: keep-alive\r\n", "Connection: close\r\n"};

template <class Number>
void appendNumber(Number number, std::string& text) {
  std::array<char, 24> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  text.append(digits.data(), static_cast<std::size_t>(end - digits.data()));
}

}  // namespace

std::string_view reasonOf(unsigned status) {
  const auto* const found =
      std::find_if(std::begin(kReasons), std::end(kReasons),
                   [&](const Reason& reason) { return reason.status == status; });
  return found != std::end(kReasons) ? found->text : std::string_view("Unknown");
}

bool hasBody(unsigned status) {
  return status >= 200 && status != 204 && status != 304;
}

void writeHead(const Response& response, Ending ending, std::string& head) {
  head.assign("HTTP/1.1 ");
  appendNumber(response.status, head);
  head.push_back(' ');
  head.append(reasonOf(response.status));
  head.append("\r\n");
  if (hasBody(response.status)) {
    if (!response.contentType.empty()) {
      head.append("Content-Type: ");
      head.append(response.contentType);
      head.append("\r\n");
    }
    head.append("Content-Length: ");
    appendNumber(response.body.size(), head);
    head.append("\r\n");
  }
  head.append(response.fields);
  head.append(kEndings[static_cast<std::size_t>(ending)]);
  head.append("\r\n");
}

void clear(Response& response) {
  response.status = 200;
  response.fields.clear();
  response.contentType.clear();
  response.body.clear();
  response.delay = std::chrono::milliseconds::zero();
  response.isLast = false;
}

void setRefusal(const Refusal& refusal, Response& response) {
  clear(response);
  response.status = refusal.status;
  response.contentType = "text/plain; charset=utf-8";
  response.body = refusal.text;
  response.body.push_back('\n');
  response.isLast = true;
}

}  // namespace http
