#include <gmock/gmock.h>

#include "Utils/Format.h"
#include "inventory/Orvex_ControlledBy.h"
#include "tests/inventory/AssociationFixture.h"

namespace {

using testing::ElementsAre;
using testing::SizeIs;

using ControlledBy = test::AssociationFixture;

TEST_F(ControlledBy, LeadsFromAnAdapterToItsPortsAlone) {
  m_adapters.makeAdapter(test::kAdapter, {});
  m_adapters.makeAdapter(test::kOtherAdapter, {});
  EXPECT_THAT(relations("Orvex_ControlledBy"),
              ElementsAre("0000:03:00 > 0000:03:00.0", "0000:03:00 > 0000:03:00.1",
                          "0000:04:00 > 0000:04:00.0", "0000:04:00 > 0000:04:00.1"));
}

TEST_F(ControlledBy, NumbersThePorts) {
  m_adapters.makeAdapter(test::kAdapter, {});
  std::vector<std::string> numbers;
  Orvex_ControlledByClass provider;
  for (const auto* one : enumerate<Orvex_ControlledBy>(provider)) {
    numbers.push_back(one->DeviceNumber.getValue());
    EXPECT_TRUE(one->AccessState.isNull());
  }
  EXPECT_THAT(numbers, ElementsAre("0", "1"));
}

TEST_F(ControlledBy, FindsEachPortOfAThousandWithoutASearch) {
  for (int number = 0; number < 500; ++number) {
    m_adapters.makeAdapter(utils::format("0000:%02x:%02x", number / 32, number % 32), {});
  }
  Orvex_ControlledByClass provider;
  const auto all = enumerate<Orvex_ControlledBy>(provider);
  ASSERT_THAT(all, SizeIs(1000));
  EXPECT_EQ(nameOf(all.back()->Antecedent.toString()), "0000:0f:13");
  EXPECT_EQ(nameOf(all.back()->Dependent.toString()), "0000:0f:13.1");
}

}  // namespace
