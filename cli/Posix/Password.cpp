#include "cli/Posix/Password.h"

#include <cstdlib>

#include "client/Fault.h"
#include "platform/Posix/PrivateFile.h"

namespace cli {
namespace {

constexpr const char* kVariable = "QUORVEL_PASSWORD";
constexpr std::size_t kMostBytes = 64 * 1024;

std::string readFirstLine(const std::string& file) {
  std::string line;
  try {
    line = platform::readPrivateLine(file, kMostBytes);
  } catch (const platform::PrivateFileFault& fault) {
    throw client::Fault(std::string("--password-file: ") + fault.what(),
                        client::Fault::Kind::Usage);
  }
  if (line.ends_with('\r')) {
    line.pop_back();
  }
  if (line.empty()) {
    throw client::Fault(
        "--password-file: the first line of '" + file + "' is empty; write the password there",
        client::Fault::Kind::Usage);
  }
  return line;
}

}  // namespace

std::optional<std::string> findPassword(const std::string& file) {
  if (!file.empty()) {
    return readFirstLine(file);
  }
  const char* const value = std::getenv(kVariable);
  return value != nullptr && *value != '\0' ? std::optional<std::string>(value) : std::nullopt;
}

}  // namespace cli
