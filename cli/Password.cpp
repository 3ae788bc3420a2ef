#include "cli/Password.h"

#include <cstdlib>
#include <fstream>

#include "client/Fault.h"
#include "platform/Texts.h"

namespace cli {
namespace {

constexpr const char* kVariable = "QUORVEL_PASSWORD";

std::string readFirstLine(const std::string& file) {
  std::ifstream stream(platform::toPath(file));
  std::string line;
  if (!stream.is_open()) {
    throw client::Fault(
        "--password-file: '" + file + "' cannot be read; check the path and its permissions",
        client::Fault::Kind::Usage);
  }
  std::getline(stream, line);
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
