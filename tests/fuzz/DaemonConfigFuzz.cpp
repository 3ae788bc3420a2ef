// Settings are refused with their place, or are such that nobody on a network gets in without a
// login, or reads a password.

#include <algorithm>
#include <string>

#include "daemon/Addresses.h"
#include "daemon/DaemonConfig.h"
#include "tests/fuzz/Fuzz.h"

namespace {

bool isOfThisMachine(const http::Endpoint& endpoint) {
  return !endpoint.path.empty() || quorveld::isLoopbackAddress(endpoint.address);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string content(reinterpret_cast<const char*>(data), size);
  bool isRead = false;
  try {
    quorveld::DaemonConfig config = quorveld::parseDaemonConfig("settings", content);
    isRead = true;
    quorveld::completeConfig(config, {});
    test::require(!config.listen.empty(), "there is an address to listen on");
    const bool isLocal = std::all_of(config.listen.begin(), config.listen.end(), isOfThisMachine);
    test::require(std::all_of(config.listen.begin(), config.listen.end(),
                              [](const http::Endpoint& endpoint) {
                                return endpoint.isTls || isOfThisMachine(endpoint);
                              }),
                  "no password is readable on a network");
    test::require(config.authentication.has_value(), "it is settled who may log in");
    test::require(isLocal || *config.authentication == quorveld::AuthenticationKind::Pam ||
                      *config.authentication == quorveld::AuthenticationKind::File,
                  "a network has to log in");
  } catch (const quorveld::ConfigurationFault& fault) {
    const std::string text = fault.what();
    test::require(isRead || text.starts_with("settings:"), "a fault says where it is");
  }
  return 0;
}
