// A file of users is refused with its place, or gives users with whole hashes alone.

#include <string>

#include "daemon/DaemonConfig.h"
#include "daemon/PasswordFile.h"
#include "daemon/Posix/PasswordHash.h"
#include "tests/fuzz/Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string content(reinterpret_cast<const char*>(data), size);
  try {
    for (const auto& [name, user] : quorveld::parsePasswordFile("users", content)) {
      test::require(!name.empty() && name.find(':') == std::string::npos, "users have names");
      test::require(quorveld::isPasswordHash(user.hash), "and whole hashes");
    }
  } catch (const quorveld::ConfigurationFault& fault) {
    test::require(std::string(fault.what()).starts_with("password-file: users:"),
                  "a fault says where it is");
  }
  return 0;
}
