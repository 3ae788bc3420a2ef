#include <gtest/gtest.h>

#include "midapi/AdapterFault.h"

namespace {

TEST(AdapterFault, SaysWhatItWasMadeWith) {
  const ma::AdapterFault fault("100%s of no adapter");
  EXPECT_STREQ(fault.what(), "100%s of no adapter");
  EXPECT_STREQ(ma::AdapterFault(fault).what(), fault.what());
}

}  // namespace
