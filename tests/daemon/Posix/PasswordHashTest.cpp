#include <gmock/gmock.h>
#include <string>

#include "daemon/Posix/PasswordHash.h"

namespace {

const std::string kSha512 =
    "$6$abcdefgh$ltjgWl6579NluT/Vi1nwEvcil.G5Nbc4NiXZaNGStk8PSwGfQv72N2CKPPrVACtLtip/cZ/1GM/"
    "O6IND4WQhG.";
const std::string kSha256 = "$5$abcdefgh$azU9PNNJw9essBuwq5yihWY9lFXM0dF54Ph4sAxX.YB";

TEST(IsPasswordHash, TakesWholeHashesOfStrongMethods) {
  EXPECT_TRUE(quorveld::isPasswordHash(kSha512));
  EXPECT_TRUE(quorveld::isPasswordHash(kSha256));
}

TEST(IsPasswordHash, RefusesDamagedAndWeakOnes) {
  for (const std::string& hash :
       {std::string(), std::string("secret"), std::string("$6$abcdefgh"), std::string("*"),
        kSha512.substr(0, kSha512.size() - 1), kSha512 + "x", std::string("abJnggxhB/yWI"),
        std::string("$1$abcdefgh$cHJi5PXp/ki/ktXzqlk6I1")}) {
    EXPECT_FALSE(quorveld::isPasswordHash(hash)) << hash;
  }
}

TEST(MatchesPasswordHash, KnowsThePasswordAlone) {
  EXPECT_TRUE(quorveld::matchesPasswordHash("secret", kSha512));
  EXPECT_TRUE(quorveld::matchesPasswordHash("geheim", kSha256));
  for (const char* const password : {"", "Secret", "secret ", "geheim"}) {
    EXPECT_FALSE(quorveld::matchesPasswordHash(password, kSha512)) << password;
  }
}

TEST(MatchesPasswordHash, MatchesNothingWithoutAHash) {
  EXPECT_FALSE(quorveld::matchesPasswordHash("secret", ""));
  EXPECT_FALSE(quorveld::matchesPasswordHash("secret", "*0"));
  EXPECT_FALSE(quorveld::matchesPasswordHash("*0", "*"));
}

}  // namespace
