// What is taken for an address to listen on is written the same again; what counts as one client
// agrees with what counts as this machine.

#include <string>

#include "daemon/Addresses.h"
#include "http/PeerGroup.h"
#include "tests/fuzz/Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  if (const auto endpoint = quorveld::parseEndpoint(text)) {
    const auto again =
        quorveld::parseEndpoint((endpoint->isTls ? "https:" : "") + endpoint->text());
    test::require(again && again->address == endpoint->address && again->port == endpoint->port &&
                      again->isTls == endpoint->isTls && again->path == endpoint->path,
                  "what is written reads the same");
  }
  const std::string group = http::toPeerGroup(text);
  test::require(quorveld::isLoopbackAddress(text) == (group == http::kLoopbackGroup),
                "loopback addresses are one client");
  if (quorveld::isLoopbackAddress(text)) {
    test::require(text.find(':') != std::string::npos || quorveld::isLoopbackHost(text),
                  "and name this machine");
  }
  static_cast<void>(quorveld::isLoopbackHost(text));
  return 0;
}
