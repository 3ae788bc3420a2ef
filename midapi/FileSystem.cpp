#include "midapi/FileSystem.h"

#include "platform/Texts.h"

namespace ma {
namespace {

// The words of the portable error, where there is one: the same on every platform and in one
// language.
std::string describe(std::error_code code) {
  if (code == std::errc::text_file_busy) {
    return "it is in use by another program";
  }
  return code.default_error_condition().message();
}

std::string textOf(const std::string& operation, const std::filesystem::path& path,
                   const std::string& reason) {
  return "cannot " + operation + " " + platform::toShownText(path) + ": " + reason;
}

}  // namespace

FileFault::FileFault(const std::string& operation, const std::filesystem::path& path,
                     std::error_code code)
    : m_code(code), m_text(textOf(operation, path, describe(code))) {}

FileFault::FileFault(const std::string& operation, const std::filesystem::path& path,
                     const std::string& reason)
    : m_code(std::make_error_code(std::errc::operation_not_permitted)),
      m_text(textOf(operation, path, reason)) {}

bool FileFault::isMissingFile() const {
  return m_code == std::errc::no_such_file_or_directory;
}

std::filesystem::path adaptersDirectory() {
  const std::filesystem::path configured = environmentPath("ORVEX_ADAPTERS");
  return configured.empty() ? defaultAdaptersDirectory() : configured;
}

bool areAdaptersChosen() {
  return !environmentPath("ORVEX_ADAPTERS").empty();
}

}  // namespace ma
