#include "daemon/ContentDigest.h"

#include <array>
#include <openssl/evp.h>

#include "Utils/Format.h"

namespace quorveld {

std::string digestContent(std::span<const std::uint8_t> content) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> bytes{};
  unsigned length = 0;
  if (EVP_Digest(content.data(), content.size(), bytes.data(), &length, EVP_sha256(), nullptr) !=
      1) {
    return "not known: the cryptographic library refuses SHA-256";
  }
  std::string text;
  for (unsigned i = 0; i < length; ++i) {
    text += utils::format("%02x", static_cast<unsigned>(bytes.at(i)));
  }
  return text;
}

}  // namespace quorveld
