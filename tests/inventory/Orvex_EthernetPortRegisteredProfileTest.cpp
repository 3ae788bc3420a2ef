#include <gmock/gmock.h>

#include "inventory/Orvex_EthernetPortRegisteredProfile.h"

namespace {

using testing::ElementsAre;

TEST(EthernetPortRegisteredProfile, IsOneInstanceThatStays) {
  Orvex_EthernetPortRegisteredProfileClass provider;
  EXPECT_EQ(provider.getName(), "Orvex_RegisteredProfile");

  core::InstanceList::Iterator cursor = provider.getInstances();
  core::CimInstance* const first = cursor.first();
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(cursor.count(), 1u);
  EXPECT_EQ(provider.getInstances().first(), first);
  EXPECT_EQ(first->getPath(), "Orvex_RegisteredProfile.InstanceID=\"Orvex:EthernetPort_Profile\"");
}

TEST(EthernetPortRegisteredProfile, DescribesTheProfile) {
  Orvex_EthernetPortRegisteredProfile profile;
  profile.setPropertyValues();

  EXPECT_EQ(profile.getClassName(), "Orvex_RegisteredProfile");
  EXPECT_EQ(profile.RegisteredOrganization.getValue(), 2);
  EXPECT_EQ(profile.RegisteredName.getValue(), "Ethernet Port Profile");
  EXPECT_EQ(profile.RegisteredVersion.getValue(), "1.0.0");
  EXPECT_THAT(profile.AdvertiseTypes.getValue(), ElementsAre(1));
  EXPECT_THAT(profile.AdvertiseTypeDescriptions.getValue(), ElementsAre("WS-Identify"));
}

}  // namespace
