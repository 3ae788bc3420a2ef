#include <gtest/gtest.h>

#include "midapi/FlashBackend.h"

namespace {

using ma::FlashError;
using ma::FlashFault;

TEST(FlashFault, SaysWhatAndWhere) {
  const FlashFault fault(FlashError::NotUpdatable, "0000:03:00.0");
  EXPECT_EQ(fault.code(), 203U);
  EXPECT_STREQ(fault.what(), "The adapter's firmware cannot be replaced: 0000:03:00.0");
}

TEST(FlashFault, CarriesInjectedCodesAndTextsUnchanged) {
  const FlashFault fault(17, "100%s broken");
  EXPECT_EQ(fault.code(), 17U);
  EXPECT_STREQ(fault.what(), "100%s broken");
}

TEST(FlashFault, HasATextForEveryError) {
  for (const FlashError error :
       {FlashError::UnknownAdapter, FlashError::InvalidDescription, FlashError::NotUpdatable,
        FlashError::EmptyImage, FlashError::InputOutput, FlashError::CompareMismatch,
        FlashError::ImageTooLarge, FlashError::WriteRefused, FlashError::Ambiguous,
        FlashError::NotOffered, FlashError::NotActivated, FlashError::NotCompared,
        FlashError::Changed}) {
    EXPECT_GT(std::string(FlashFault(error, "x").what()).size(), 10U);
  }
}

}  // namespace
