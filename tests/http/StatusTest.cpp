#include <gmock/gmock.h>

#include "http/Status.h"

namespace {

TEST(ReasonOf, KnowsTheStatusesThatServersGive) {
  EXPECT_EQ(http::reasonOf(200), "OK");
  EXPECT_EQ(http::reasonOf(401), "Unauthorized");
  EXPECT_EQ(http::reasonOf(505), "HTTP Version Not Supported");
}

TEST(ReasonOf, HasWordsForEachStatusThatIsNamed) {
  for (const unsigned status :
       {http::kStatusContinue, http::kStatusOk, http::kStatusNoContent, http::kStatusNotModified,
        http::kStatusBadRequest, http::kStatusUnauthorized, http::kStatusForbidden,
        http::kStatusNotFound, http::kStatusMethodNotAllowed, http::kStatusRequestTimeout,
        http::kStatusContentTooLarge, http::kStatusUnsupportedMediaType,
        http::kStatusExpectationFailed, http::kStatusTooManyRequests,
        http::kStatusHeaderFieldsTooLarge, http::kStatusInternalServerError,
        http::kStatusNotImplemented, http::kStatusServiceUnavailable,
        http::kStatusVersionNotSupported}) {
    EXPECT_NE(http::reasonOf(status), "Unknown") << status;
  }
}

TEST(ReasonOf, IsUnknownForAnyOtherStatus) {
  EXPECT_EQ(http::reasonOf(299), "Unknown");
}

TEST(IsInterim, IsWhatAnnouncesAnAnswer) {
  EXPECT_TRUE(http::isInterim(http::kStatusContinue));
  EXPECT_TRUE(http::isInterim(199));
  EXPECT_FALSE(http::isInterim(http::kStatusOk));
  EXPECT_FALSE(http::isInterim(http::kStatusVersionNotSupported));
}

TEST(HasBody, IsSoButForThoseThatSayNothingMore) {
  EXPECT_TRUE(http::hasBody(http::kStatusOk));
  EXPECT_TRUE(http::hasBody(http::kStatusNotFound));
  EXPECT_FALSE(http::hasBody(http::kStatusContinue));
  EXPECT_FALSE(http::hasBody(http::kStatusNoContent));
  EXPECT_FALSE(http::hasBody(http::kStatusNotModified));
}

}  // namespace
