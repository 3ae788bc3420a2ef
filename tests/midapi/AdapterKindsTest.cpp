// Which kinds of adapters the flash library counts.

#include <gmock/gmock.h>

#include "midapi/MidApi.h"
#include "tests/midapi/AdaptersVariable.h"

namespace {

using ma::AdapterKind;
using testing::Contains;
using testing::ElementsAre;

TEST(AdapterKinds, AreVirtualAloneWhereADirectoryIsNamed) {
  const test::AdaptersVariable variable("/nowhere");
  EXPECT_THAT(ma::adapterKinds(), ElementsAre(AdapterKind::Virtual));
}

TEST(AdapterKinds, FollowTheSettings) {
  ma::useSettings([] {
    utils::FlashSettings settings;
    settings.hasKernelAdapters = false;
    return settings;
  });
  EXPECT_THAT(ma::adapterKinds(), ElementsAre(AdapterKind::Virtual));
  ma::useSettings(nullptr);
  EXPECT_THAT(ma::adapterKinds(), Contains(AdapterKind::Virtual));
}

}  // namespace
