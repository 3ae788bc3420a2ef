#include "Os/Uri.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "Os/Files.h"
#include "Utils/Assert.h"
#include "Utils/Conversions.h"

namespace utils {
namespace {

constexpr LogSource kLog{"Uri"};

// Indexed by scheme number.
constexpr std::array<std::string_view, 9> kSchemeNames = {"",     "",      "data", "file", "ftp",
                                                          "http", "https", "nfs",  "tftp"};
constexpr std::string_view kAuthorityMark = "//";

}  // namespace

Uri::Uri(const std::string& text) : m_supportedUri{kFile} {
  ORVEX_ASSERT(kLog, (int)m_supportedUri.size() != 0);
  parseUri(text);
}

Uri::~Uri() = default;

bool Uri::isSupported() const {
  return std::find(m_supportedUri.begin(), m_supportedUri.end(), m_scheme) != m_supportedUri.end();
}

bool Uri::exists() const {
  if (!isSupported() || m_scheme != kFile) {
    return false;
  }
  try {
    static_cast<void>(os::getFileSize(m_path));
    return true;
  } catch (...) {
    return false;
  }
}

void Uri::parseUri(const std::string& text) {
  const std::vector<std::string> pieces = split(text, ':', kNoQuote);
  if (pieces.size() < 2) {
    logDebug(kLog, "utils::Uri::parseUri", "Incorrect URI format of '%s'", text.c_str());
    return;
  }
  const std::string wanted = toUpper(pieces[0]);
  if (pieces[1].starts_with(kAuthorityMark)) {
    const auto match = std::find_if(
        kSchemeNames.begin(), kSchemeNames.end(),
        [&wanted](std::string_view name) { return toUpper(std::string(name)) == wanted; });
    if (match != kSchemeNames.end()) {
      m_scheme = static_cast<std::uint32_t>(match - kSchemeNames.begin());
    }
  }
  if (m_scheme == kUnknown) {
    logDebug(kLog, "utils::Uri::parseUri", "Uknown URI format of '%s'", text.c_str());
    return;
  }
  m_path = text.substr(pieces[0].size() + 1 + kAuthorityMark.size());
}

}  // namespace utils
