#include <gtest/gtest.h>
#include <span>
#include <string>

#include "daemon/ContentDigest.h"

namespace {

std::string digest(const std::string& content) {
  return quorveld::digestContent(
      {reinterpret_cast<const std::uint8_t*>(content.data()), content.size()});
}

// The examples of FIPS 180.
TEST(ContentDigest, IsTheSha256OfTheContent) {
  EXPECT_EQ(digest("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(digest(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(digest(std::string(1'000'000, 'a')),
            "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

}  // namespace
