// What a login is made of holds what a login may hold, whatever a client sends; and there is one
// writing for it, which reads the same.

#include <algorithm>
#include <openssl/evp.h>
#include <string>
#include <vector>

#include "daemon/BasicCredentials.h"
#include "tests/fuzz/Fuzz.h"

namespace {

std::string write(const quorveld::BasicCredentials& login) {
  const std::string text = login.user + ":" + login.password;
  std::vector<unsigned char> digits(4 * (text.size() / 3 + 1) + 1);
  const int length =
      EVP_EncodeBlock(digits.data(), reinterpret_cast<const unsigned char*>(text.data()),
                      static_cast<int>(text.size()));
  return "Basic " + std::string(digits.begin(), digits.begin() + length);
}

bool hasControlCharacter(const std::string& text) {
  return std::any_of(text.begin(), text.end(), [](char character) {
    return static_cast<unsigned char>(character) < ' ' || character == '\x7f';
  });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string field(reinterpret_cast<const char*>(data), size);
  const auto login = quorveld::parseBasicCredentials(field);
  if (!login) {
    return 0;
  }
  test::require(!login->user.empty(), "there is a user");
  test::require(login->user.find(':') == std::string::npos, "whose name has no colon");
  test::require(!hasControlCharacter(login->user + login->password), "nor control characters");
  const auto again = quorveld::parseBasicCredentials(write(*login));
  test::require(again && again->user == login->user && again->password == login->password,
                "what is written reads the same");
  return 0;
}
