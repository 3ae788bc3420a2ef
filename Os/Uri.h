// The URI that names a firmware image. Only local files are supported: "file://" and a path.
//
// Parsing never throws; a text that is no URI of a known scheme has scheme 0. A plain value.

#ifndef ORVEX_OS_URI_H_
#define ORVEX_OS_URI_H_

#include <cstdint>
#include <string>
#include <vector>

#include "Utils/Export.h"

namespace utils {

class ORVEX_CORE_API Uri {
 public:
  // The schemes by number, 0 for an unknown one.
  enum Scheme : std::uint32_t {
    kUnknown = 0,
    kData = 2,
    kFile = 3,
    kFtp = 4,
    kHttp = 5,
    kHttps = 6,
    kNfs = 7,
    kTftp = 8,
  };

  explicit Uri(const std::string& text);
  Uri(const Uri&) = default;
  Uri& operator=(const Uri&) = default;
  virtual ~Uri();

  // Returns whether the system can read from URIs of this scheme.
  [[nodiscard]] bool isSupported() const;
  // Returns whether the URI names a file that could be an image (see os::getFileSize).
  [[nodiscard]] bool exists() const;
  [[nodiscard]] std::uint32_t getScheme() const { return m_scheme; }
  // Returns what follows "//", empty for an unknown scheme.
  [[nodiscard]] std::string getPath() const { return m_path; }

 private:
  void parseUri(const std::string& text);

  std::vector<std::uint32_t> m_supportedUri;
  std::uint32_t m_scheme = kUnknown;
  std::string m_path;
};

}  // namespace utils

#endif  // ORVEX_OS_URI_H_
