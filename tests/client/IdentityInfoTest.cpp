#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "client/IdentityInfo.h"
#include "tests/client/FakeInventory.h"

namespace {

using client::findIdentityInfo;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(IdentityInfo, IsFoundByItsType) {
  test::FakeIdentity software("id", "name", 2);
  software.IdentityInfoType.setValue({"Orvex:PCIDevice", "Orvex:Digest", "Orvex:PCIDevice"});
  software.IdentityInfoValue.setValue({"1af4:1041", "0123456789abcdef", "8086:1592"});
  const client::InstanceSnapshot snapshot = client::snapshotOf(software);
  EXPECT_THAT(findIdentityInfo(snapshot, client::kDeviceInfo),
              ElementsAre("1af4:1041", "8086:1592"));
  EXPECT_THAT(findIdentityInfo(snapshot, client::kDigestInfo), ElementsAre("0123456789abcdef"));
  EXPECT_THAT(findIdentityInfo(snapshot, "Orvex:Other"), IsEmpty());
}

TEST(IdentityInfo, EndsWithTheShorterOfBothLists) {
  test::FakeIdentity software("id", "name", 2);
  software.IdentityInfoType.setValue({"Orvex:PCIDevice", "Orvex:PCIDevice"});
  software.IdentityInfoValue.setValue({"1af4:1041"});
  EXPECT_THAT(findIdentityInfo(client::snapshotOf(software), client::kDeviceInfo),
              ElementsAre("1af4:1041"));
}

}  // namespace
