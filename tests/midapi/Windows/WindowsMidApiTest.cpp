// What the flash library asks of the system while it writes.

#include <gmock/gmock.h>

#include "midapi/MidApi.h"
#include "tests/midapi/AdapterFixture.h"
#include "tests/midapi/AdaptersVariable.h"
#include "tests/support/RomBuilder.h"
#include "tests/support/Windows/ExecutionStates.h"

namespace {

using testing::ElementsAre;

TEST(WindowsMidApi, KeepsTheMachineAwakeWhileItWritesAFlash) {
  const test::AdapterFixture adapters;
  const test::AdaptersVariable variable(adapters.directory());
  const test::Bytes image = test::RomBuilder().add(test::RomImage::legacy()).build();
  adapters.makeAdapter("0000:03:00", image);
  const test::ExecutionStates states("OrvexMidApi.dll");
  std::uint32_t code = 0;
  std::string text;

  EXPECT_TRUE(ma::writeFlashImage("0000:03:00.0", image.data(),
                                  static_cast<std::uint32_t>(image.size()), code, text));
  constexpr EXECUTION_STATE kAwake = ES_CONTINUOUS | ES_SYSTEM_REQUIRED;
  EXPECT_THAT(states.all(), ElementsAre(kAwake, ES_CONTINUOUS));

  EXPECT_TRUE(ma::updateCapabilityWord("0000:03:00.0", {}, code, text));
  EXPECT_THAT(states.all(), ElementsAre(kAwake, ES_CONTINUOUS, kAwake, ES_CONTINUOUS));
}

}  // namespace
