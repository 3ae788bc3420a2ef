#include <gmock/gmock.h>

#include "daemon/BasicCredentials.h"

namespace {

using testing::AllOf;
using testing::Field;
using testing::Optional;

auto IsLogin(const std::string& user, const std::string& password) {
  return Optional(AllOf(Field("user", &quorveld::BasicCredentials::user, user),
                        Field("password", &quorveld::BasicCredentials::password, password)));
}

TEST(ParseBasicCredentials, ReadsUserAndPassword) {
  EXPECT_THAT(quorveld::parseBasicCredentials("Basic QWxhZGRpbjpvcGVuIHNlc2FtZQ=="),
              IsLogin("Aladdin", "open sesame"));
}

TEST(ParseBasicCredentials, LeavesColonsToThePassword) {
  EXPECT_THAT(quorveld::parseBasicCredentials("Basic YTpiOmM6"), IsLogin("a", "b:c:"));
  EXPECT_THAT(quorveld::parseBasicCredentials("Basic YTo="), IsLogin("a", ""));
}

TEST(ParseBasicCredentials, ReadsUtf8) {
  EXPECT_THAT(quorveld::parseBasicCredentials("Basic dGVzdDoxMjPCow=="),
              IsLogin("test", "123\xC2\xA3"));
}

TEST(ParseBasicCredentials, TakesTheSchemeInAnyCaseAndSeveralBlanks) {
  EXPECT_THAT(quorveld::parseBasicCredentials(" bASIC   YTpi "), IsLogin("a", "b"));
}

TEST(ParseBasicCredentials, RefusesWhatIsNoLogin) {
  for (const char* const field : {
           "", "Basic", "Basic ", "BasicYTpi", "Bearer YTpi",
           "Basic YTp",       // no whole group
           "Basic YTp!",      // no digit
           "Basic YTo=YTo=",  // padding in the middle
           "Basic ====",      // padding alone
           "Basic YTp=",      // bits left over
           "Basic YWI=",      // no colon
           "Basic OmI=",      // no user
           "Basic YQo6Yg==",  // a line feed
           "Basic YTpiAA==",  // a null character
       }) {
    EXPECT_FALSE(quorveld::parseBasicCredentials(field)) << field;
  }
}

}  // namespace
