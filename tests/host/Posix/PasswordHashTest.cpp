#include <gmock/gmock.h>
#include <string>

#include "host/Posix/PasswordHash.h"

namespace {

const std::string kSha512 =
    "$6$abcdefgh$ltjgWl6579NluT/Vi1nwEvcil.G5Nbc4NiXZaNGStk8PSwGfQv72N2CKPPrVACtLtip/cZ/1GM/"
    "O6IND4WQhG.";
const std::string kSha256 = "$5$abcdefgh$azU9PNNJw9essBuwq5yihWY9lFXM0dF54Ph4sAxX.YB";

TEST(IsPasswordHash, TakesWholeHashesOfStrongMethods) {
  EXPECT_TRUE(host::isPasswordHash(kSha512));
  EXPECT_TRUE(host::isPasswordHash(kSha256));
}

TEST(IsPasswordHash, RefusesDamagedAndWeakOnes) {
  for (const std::string& hash :
       {std::string(), std::string("secret"), std::string("$6$abcdefgh"), std::string("*"),
        kSha512.substr(0, kSha512.size() - 1), kSha512 + "x", std::string("abJnggxhB/yWI"),
        std::string("$1$abcdefgh$cHJi5PXp/ki/ktXzqlk6I1")}) {
    EXPECT_FALSE(host::isPasswordHash(hash)) << hash;
  }
}

TEST(MatchesPasswordHash, KnowsThePasswordAlone) {
  EXPECT_TRUE(host::matchesPasswordHash("secret", kSha512));
  EXPECT_TRUE(host::matchesPasswordHash("geheim", kSha256));
  for (const char* const password : {"", "Secret", "secret ", "geheim"}) {
    EXPECT_FALSE(host::matchesPasswordHash(password, kSha512)) << password;
  }
}

TEST(MatchesPasswordHash, MatchesNothingWithoutAHash) {
  EXPECT_FALSE(host::matchesPasswordHash("secret", ""));
  EXPECT_FALSE(host::matchesPasswordHash("secret", "*0"));
  EXPECT_FALSE(host::matchesPasswordHash("*0", "*"));
}

}  // namespace
