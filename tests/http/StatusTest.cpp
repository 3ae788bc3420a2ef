#include <gmock/gmock.h>

#include "http/Status.h"

namespace http {
namespace {

TEST(ReasonOf, KnowsTheStatusesThatServersGive) {
  EXPECT_EQ(reasonOf(200), "OK");
  EXPECT_EQ(reasonOf(401), "Unauthorized");
  EXPECT_EQ(reasonOf(505), "HTTP Version Not Supported");
}

TEST(ReasonOf, HasWordsForEachStatusThatIsNamed) {
  for (const unsigned status :
       {kStatusContinue, kStatusOk, kStatusNoContent, kStatusNotModified, kStatusBadRequest,
        kStatusUnauthorized, kStatusForbidden, kStatusNotFound, kStatusMethodNotAllowed,
        kStatusRequestTimeout, kStatusContentTooLarge, kStatusUnsupportedMediaType,
        kStatusExpectationFailed, kStatusTooManyRequests, kStatusHeaderFieldsTooLarge,
        kStatusInternalServerError, kStatusNotImplemented, kStatusServiceUnavailable,
        kStatusVersionNotSupported}) {
    EXPECT_NE(reasonOf(status), "Unknown") << status;
  }
}

TEST(ReasonOf, IsUnknownForAnyOtherStatus) {
  EXPECT_EQ(reasonOf(299), "Unknown");
}

TEST(IsInterim, IsWhatAnnouncesAnAnswer) {
  EXPECT_TRUE(isInterim(kStatusContinue));
  EXPECT_TRUE(isInterim(199));
  EXPECT_FALSE(isInterim(kStatusOk));
  EXPECT_FALSE(isInterim(kStatusVersionNotSupported));
}

TEST(HasBody, IsSoButForThoseThatSayNothingMore) {
  EXPECT_TRUE(hasBody(kStatusOk));
  EXPECT_TRUE(hasBody(kStatusNotFound));
  EXPECT_FALSE(hasBody(kStatusContinue));
  EXPECT_FALSE(hasBody(kStatusNoContent));
  EXPECT_FALSE(hasBody(kStatusNotModified));
}

}  // namespace
}  // namespace http
