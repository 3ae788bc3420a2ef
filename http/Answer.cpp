#include "http/Answer.h"

#include <array>
#include <charconv>
#include <cstddef>

namespace http {
namespace {

constexpr std::string_view kEndings[] = {"", "Connection: keep-alive\r\n", "Connection: close\r\n"};

template <class Number>
void appendNumber(Number number, std::string& text) {
  std::array<char, 24> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  text.append(digits.data(), static_cast<std::size_t>(end - digits.data()));
}

}  // namespace

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
  response.status = kStatusOk;
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
