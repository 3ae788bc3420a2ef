#include "daemon/Posix/PasswordHash.h"

#include <crypt.h>
#include <cstring>
#include <memory>
#include <openssl/crypto.h>
#include <string_view>

namespace quorveld {
namespace {

// How each method's hashes begin, and how many characters of the hash itself end them, so that one
// that was cut short is found when it is read.
struct Method {
  std::string_view prefix;
  std::size_t length;
};

constexpr Method kMethods[] = {
    {"$5$", 43}, {"$6$", 86}, {"$7$", 43}, {"$2b$", 53}, {"$y$", 43}, {"$gy$", 43},
};

}  // namespace

bool isPasswordHash(const std::string& hash) {
  for (const Method& method : kMethods) {
    if (hash.starts_with(method.prefix)) {
      const std::size_t dollar = hash.rfind('$');
      const int salt = crypt_checksalt(hash.c_str());
      return hash.size() - dollar - 1 == method.length && dollar >= method.prefix.size() &&
             salt != CRYPT_SALT_INVALID && salt != CRYPT_SALT_METHOD_DISABLED;
    }
  }
  return false;
}

bool matchesPasswordHash(const std::string& password, const std::string& hash) {
  const auto data = std::make_unique<crypt_data>();
  const char* const made = crypt_r(password.c_str(), hash.c_str(), data.get());
  const bool isSame = made != nullptr && made[0] != '*' && std::strlen(made) == hash.size() &&
                      CRYPTO_memcmp(made, hash.data(), hash.size()) == 0;
  // The password's traces do not stay on the heap.
  OPENSSL_cleanse(data.get(), sizeof(crypt_data));
  return isSame;
}

}  // namespace quorveld
