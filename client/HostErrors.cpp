#include "client/HostErrors.h"

#include <algorithm>

#include "Utils/Ascii.h"
#include "Utils/Printable.h"
#include "cimxml/Characters.h"
#include "client/Fault.h"
#include "client/Queries.h"
#include "http/Status.h"

namespace client {
namespace {

std::string nameOf(unsigned code) {
  const std::string_view name = cimxml::getStatusName(static_cast<cimxml::StatusCode>(code));
  return name.empty() ? "CIM status " + std::to_string(code) : std::string(name);
}

std::string fieldOf(const http::ClientResponse& answer, const std::string& name) {
  const auto found = answer.fields.find(name);
  return found != answer.fields.end() ? utils::toPrintable(found->second) : "";
}

std::string describeLoginRefusal(const HostAddress& address) {
  if (address.user.empty()) {
    return address.url() + " wants a login; name the user: --host " +
           (address.isTls ? "https" : "http") + "://USER@...";
  }
  return address.url() + " refused the login of " + address.user +
         "; check the name and the password";
}

// Media types are compared without regard to case (RFC 9110, 8.3.1).
bool isOfType(std::string contentType, std::string_view type) {
  std::transform(contentType.begin(), contentType.end(), contentType.begin(), utils::toLowerAscii);
  return contentType.starts_with(type);
}

// Returns the first line of an answer that is meant for a person; empty for any other.
std::string reasonOf(const http::ClientResponse& answer) {
  constexpr std::size_t kLongest = 300;
  if (!isOfType(fieldOf(answer, "content-type"), "text/plain")) {
    return "";
  }
  const std::string line = answer.body.substr(0, answer.body.find_first_of("\r\n"));
  return utils::toPrintable(cimxml::shorten(line, kLongest));
}

std::string describeProhibition(const HostAddress& address, const std::string& reason) {
  const std::string text = address.url() + " does not allow this";
  if (!address.user.empty()) {
    return text + " to " + address.user + (reason.empty() ? "" : ": " + reason);
  }
  return text + (reason.empty() ? " without a login" : ": " + reason);
}

// Returns the text of a status that says enough by itself; empty for the others. Throws
// PassingFault for one that will not last.
std::string describeStatus(const HostAddress& address, const http::ClientResponse& answer) {
  switch (answer.status) {
    case http::kStatusUnauthorized:
      return describeLoginRefusal(address);
    case http::kStatusForbidden:
      return describeProhibition(address, reasonOf(answer));
    case http::kStatusNotFound:
      return address.url() + " answers, but serves no CIM-XML; check the port";
    case http::kStatusTooManyRequests:
    case http::kStatusServiceUnavailable:
      throw PassingFault(address.url() + " is too busy to answer; try again later");
    default:
      return "";
  }
}

bool isXml(const std::string& contentType) {
  return isOfType(contentType, "application/xml") || isOfType(contentType, "text/xml");
}

}  // namespace

bool isError(const cimxml::Response& response, cimxml::StatusCode status) {
  return response.error && response.error->code == static_cast<unsigned>(status);
}

void refuseError(const cimxml::ErrorValue& error, const std::string& nameSpace) {
  std::string text = nameOf(error.code);
  if (!error.description.empty()) {
    text += ": " + utils::toPrintable(error.description);
  }
  if (error.code == static_cast<unsigned>(cimxml::StatusCode::InvalidNamespace)) {
    text += "; --namespace names another than " + nameSpace;
  }
  throw Fault(text);
}

void demandQueryTaken(const cimxml::Response& response) {
  struct Refusal {
    cimxml::StatusCode status;
    Fault::Kind kind;
  };
  constexpr Refusal kRefusals[] = {
      {cimxml::StatusCode::InvalidClass, Fault::Kind::Refused},
      {cimxml::StatusCode::QueryLanguageNotSupported, Fault::Kind::Usage},
      {cimxml::StatusCode::InvalidQuery, Fault::Kind::Usage},
      {cimxml::StatusCode::QueryFeatureNotSupported, Fault::Kind::Usage},
  };
  for (const auto& [status, kind] : kRefusals) {
    if (isError(response, status)) {
      const std::string& description = response.error->description;
      refuseQuery(description.empty() ? std::string(cimxml::getStatusName(status))
                                      : utils::toPrintable(description),
                  kind);
    }
  }
}

void demandAnswered(const HostAddress& address, const http::ClientResponse& answer) {
  if (answer.status == http::kStatusOk) {
    if (const std::string type = fieldOf(answer, "content-type"); !isXml(type)) {
      refuseAnswer(address, type.empty() ? "the answer has no content type"
                                         : "the answer is of the type " + type);
    }
    return;
  }
  if (const std::string text = describeStatus(address, answer); !text.empty()) {
    throw Fault(text);
  }
  const std::string error = fieldOf(answer, "cimerror");
  const std::string reason = reasonOf(answer);
  throw Fault(address.url() + " refused the request with the HTTP status " +
              std::to_string(answer.status) + (error.empty() ? "" : ", " + error) +
              (reason.empty() ? "; its log may tell more" : ", and says: " + reason));
}

void refuseAnswer(const HostAddress& address, const std::string& reason) {
  throw Fault("what " + address.url() + " answers is no CIM-XML: " + utils::toPrintable(reason) +
              "; check host and port");
}

std::string encodeForField(std::string_view text) {
  constexpr std::string_view kPlain =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_.~/";
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string encoded;
  for (const char character : text) {
    if (kPlain.find(character) != std::string_view::npos) {
      encoded += character;
      continue;
    }
    const auto byte = static_cast<unsigned char>(character);
    encoded += '%';
    encoded += kDigits[byte >> 4];
    encoded += kDigits[byte & 0xFU];
  }
  return encoded;
}

std::string toBasicLogin(const std::string& user, const std::string& password) {
  constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  const std::string text = user + ":" + password;
  std::string encoded;
  for (std::size_t i = 0; i < text.size(); i += 3) {
    const std::size_t taken = std::min<std::size_t>(3, text.size() - i);
    unsigned long bits = 0;
    for (std::size_t j = 0; j < 3; ++j) {
      bits = (bits << 8) | (j < taken ? static_cast<unsigned char>(text[i + j]) : 0U);
    }
    for (std::size_t j = 0; j < 4; ++j) {
      encoded += j <= taken ? kDigits[(bits >> (18 - 6 * j)) & 0x3FU] : '=';
    }
  }
  return "Basic " + encoded;
}

}  // namespace client
