#include <gmock/gmock.h>

#include "midapi/FieldDefect.h"

namespace {

TEST(FieldDefect, SaysWhatAndWhere) {
  const ma::FieldDefect defect{"components[1].location", 0xAC, "is 0x20"};
  EXPECT_EQ(defect.toString(), "components[1].location at 0xac: is 0x20");
  EXPECT_EQ((ma::FieldDefect{"identifier", 0, "is unknown"}).toString(),
            "identifier at 0x0: is unknown");
}

}  // namespace
