#include "client/HostAddress.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

#include "cimxml/Ports.h"
#include "client/Fault.h"
#include "http/Endpoint.h"

namespace client {
namespace {

constexpr int kHexadecimal = 16;

struct Scheme {
  std::string_view prefix;
  bool isTls;
  std::uint16_t port;
};

constexpr Scheme kSchemes[] = {
    {"http://", false, cimxml::kHttpPort},
    {"https://", true, cimxml::kHttpsPort},
};

[[noreturn]] void refuse(const std::string& text, const std::string& reason) {
  throw Fault("--host: '" + text + "' " + reason +
                  "; write http://[USER@]HOST:PORT, https://[USER@]HOST:PORT or unix:[PATH]",
              Fault::Kind::Usage);
}

// The text is not shown, since the password is in it.
[[noreturn]] void refusePassword() {
  throw Fault(
      "--host: the address has a password in it. A password is not taken as an argument: other "
      "users of this machine could read it in "
      "the list of processes. Give it by --password-file, by the environment variable "
      "QUORVEL_PASSWORD, or at the prompt",
      Fault::Kind::Usage);
}

const Scheme* findScheme(std::string_view text) {
  for (const Scheme& scheme : kSchemes) {
    if (text.starts_with(scheme.prefix)) {
      return &scheme;
    }
  }
  return nullptr;
}

std::optional<std::string> decode(std::string_view text) {
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      decoded += text[i];
      continue;
    }
    unsigned char byte = 0;
    const std::string_view digits = text.substr(i + 1, 2);
    const auto [stop, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), byte, kHexadecimal);
    if (digits.size() != 2 || error != std::errc() || stop != digits.data() + digits.size()) {
      return std::nullopt;
    }
    decoded += static_cast<char>(byte);
    i += 2;
  }
  return decoded;
}

std::optional<std::uint16_t> parsePort(std::string_view text) {
  std::uint16_t port = 0;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), port);
  if (text.empty() || error != std::errc() || stop != text.data() + text.size() || port == 0) {
    return std::nullopt;
  }
  return port;
}

bool isHostCharacter(char character) {
  constexpr std::string_view kOthers = ".-_:%";
  return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'z') ||
         (character >= 'A' && character <= 'Z') ||
         kOthers.find(character) != std::string_view::npos;
}

// What looks like one and is none, "127.0.0.999", is a name, which anybody may answer for.
bool isIpv4(std::string_view text) {
  constexpr int kParts = 4;
  for (int part = 1; part <= kParts; ++part) {
    std::uint8_t number = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const auto length = static_cast<std::size_t>(stop - text.data());
    if (error != std::errc() || (length > 1 && text.front() == '0')) {
      return false;
    }
    text.remove_prefix(length);
    if (part < kParts) {
      if (!text.starts_with('.')) {
        return false;
      }
      text.remove_prefix(1);
    }
  }
  return text.empty();
}

// Takes the host off the front: "[::1]" or what stands before a colon.
std::string takeHost(std::string_view& rest, const std::string& text) {
  std::string_view host;
  if (rest.starts_with('[')) {
    const std::size_t end = rest.find(']');
    if (end == std::string_view::npos) {
      refuse(text, "has a '[' without ']'");
    }
    host = rest.substr(1, end - 1);
    rest.remove_prefix(end + 1);
  } else {
    host = rest.substr(0, rest.find(':'));
    rest.remove_prefix(host.size());
  }
  if (host.empty() || !std::all_of(host.begin(), host.end(), isHostCharacter)) {
    refuse(text, "names no host");
  }
  return std::string(host);
}

std::string parseUser(std::string_view user, const std::string& text) {
  if (user.find(':') != std::string_view::npos) {
    refusePassword();
  }
  const std::optional<std::string> decoded = decode(user);
  if (!decoded || decoded->empty()) {
    refuse(text, "has no valid name of a user before the '@'");
  }
  // It could not be told from the password behind it.
  if (decoded->find(':') != std::string::npos) {
    refuse(text, "has a user with a ':' in the name, which no login can carry");
  }
  return *decoded;
}

HostAddress parseLocalAddress(const std::string& text) {
  HostAddress address;
  address.path = text.substr(std::string_view(http::kLocalScheme).size());
  if (address.path.empty()) {
    address.path = HostAddress::kDefaultSocket;
  } else if (!address.path.starts_with('/')) {
    refuse(text, "has a path that does not begin with a '/'");
  }
  return address;
}

}  // namespace

std::string HostAddress::url() const {
  if (!path.empty()) {
    return http::kLocalScheme + path;
  }
  const bool isBracketed = host.find(':') != std::string::npos;
  return std::string(kSchemes[isTls ? 1 : 0].prefix) + (isBracketed ? "[" + host + "]" : host) +
         ":" + std::to_string(port);
}

bool HostAddress::isLoopback() const {
  return !path.empty() || host == "localhost" || host == "::1" ||
         (host.starts_with("127.") && isIpv4(host));
}

HostAddress parseHostAddress(const std::string& text) {
  if (text.starts_with(http::kLocalScheme)) {
    return parseLocalAddress(text);
  }
  const Scheme* const scheme = findScheme(text);
  if (scheme == nullptr) {
    if (text.find('@') != std::string::npos && text.find(':') != std::string::npos) {
      throw Fault("--host: an address begins with http:// or https://", Fault::Kind::Usage);
    }
    refuse(text, "does not begin with http://, https:// or unix:");
  }
  HostAddress address;
  address.isTls = scheme->isTls;
  address.port = scheme->port;
  std::string_view rest = std::string_view(text).substr(scheme->prefix.size());
  if (const std::size_t sign = rest.rfind('@'); sign != std::string_view::npos) {
    address.user = parseUser(rest.substr(0, sign), text);
    rest.remove_prefix(sign + 1);
  }
  if (rest.ends_with('/')) {
    rest.remove_suffix(1);
  }
  address.host = takeHost(rest, text);
  if (rest.empty()) {
    return address;
  }
  const std::optional<std::uint16_t> port =
      rest.starts_with(':') ? parsePort(rest.substr(1)) : std::nullopt;
  if (!port) {
    refuse(text, "has no valid port behind the host");
  }
  address.port = *port;
  return address;
}

}  // namespace client
