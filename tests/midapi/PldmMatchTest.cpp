#include <gmock/gmock.h>

#include "midapi/PldmMatch.h"
#include "tests/support/PldmBuilder.h"

namespace {

using ma::PciIds;
using ma::PldmPackage;
using test::PldmBuilder;
using test::PldmDevice;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr PciIds kAdapter = {0x1AF4, 0x1041, 0x1AF4, 0x0001};

PldmPackage packageFor(const std::vector<PldmDevice>& devices) {
  PldmBuilder builder;
  for (const PldmDevice& device : devices) {
    builder.add(device);
  }
  PldmPackage package = ma::parsePldmPackage(builder.build().bytes);
  EXPECT_TRUE(package.isValid()) << package.defect->toString();
  return package;
}

bool isFor(const PldmDevice& device, const PciIds& ids = kAdapter) {
  return ma::isFor(packageFor({device}).devices.at(0), ids);
}

bool namesDevice(const PldmDevice& device) {
  return ma::namesDevice(packageFor({device}).devices.at(0));
}

TEST(PldmMatch, ComparesEachIdThatTheRecordNames) {
  const PldmDevice device = PldmDevice(0x1AF4, 0x1041).subsystem(0x1AF4, 0x0001);
  EXPECT_TRUE(isFor(device));
  EXPECT_FALSE(isFor(device, {0x1AF5, 0x1041, 0x1AF4, 0x0001}));
  EXPECT_FALSE(isFor(device, {0x1AF4, 0x1042, 0x1AF4, 0x0001}));
  EXPECT_FALSE(isFor(device, {0x1AF4, 0x1041, 0x1AF5, 0x0001}));
  EXPECT_FALSE(isFor(device, {0x1AF4, 0x1041, 0x1AF4, 0x0002}));
}

TEST(PldmMatch, TakesAnIdThatIsAbsentOrZeroForAny) {
  EXPECT_TRUE(isFor(PldmDevice(0x1AF4, 0x1041)));
  EXPECT_TRUE(isFor(PldmDevice(0x1AF4, 0)));
  EXPECT_TRUE(isFor(PldmDevice(0, 0x1041)));
  EXPECT_FALSE(isFor(PldmDevice(0, 0x1042)));
  EXPECT_TRUE(isFor(PldmDevice(0x1AF4, 0x1041).subsystem(0, 0x0001)));
  EXPECT_TRUE(isFor(PldmDevice(0x1AF4, 0x1041).subsystem(0x1AF4, 0)));
  EXPECT_FALSE(isFor(PldmDevice(0x1AF4, 0x1041).subsystem(0x1AF5, 0)));
  EXPECT_TRUE(isFor(PldmDevice()));
}

TEST(PldmMatch, TakesTheLastOfTwoIds) {
  EXPECT_TRUE(isFor(PldmDevice(0x1AF4, 0x1042).descriptor(0x0100, {0x41, 0x10})));
  EXPECT_FALSE(isFor(PldmDevice(0x1AF4, 0x1041).descriptor(0x0100, {0x42, 0x10})));
  EXPECT_TRUE(isFor(PldmDevice(0x1AF4, 0x1042).descriptor(0x0100, {0, 0})));
}

TEST(PldmMatch, PassesOverOtherDescriptors) {
  EXPECT_TRUE(isFor(PldmDevice(0x1AF4, 0x1041)
                        .descriptor(0x0103, {0x42})
                        .descriptor(0x0001, {1, 2, 3, 4})
                        .vendorDefined({"Slot"}, {0x42, 0x10})));
}

TEST(PldmMatch, KnowsRecordsThatNameADevice) {
  EXPECT_TRUE(namesDevice(PldmDevice(0x1AF4, 0x1041)));
  EXPECT_FALSE(namesDevice(PldmDevice(0x1AF4, 0)));
  EXPECT_FALSE(namesDevice(PldmDevice(0, 0x1041)));
  EXPECT_FALSE(namesDevice(PldmDevice().descriptor(0x0001, {1, 2, 3, 4})));
}

TEST(PldmMatch, FindsRecordsInTheirOrder) {
  const PldmPackage package =
      packageFor({PldmDevice(0x1AF4, 0x1042), PldmDevice(0x1AF4, 0x1041).subsystem(0x1AF4, 2),
                  PldmDevice(0x1AF4, 0x1041).subsystem(0x1AF4, 1), PldmDevice(0x1AF4, 0x1041)});
  EXPECT_THAT(ma::findRecordsFor(package, kAdapter), ElementsAre(2, 3));
  EXPECT_THAT(ma::findRecordsFor(package, {0x10EC, 0x8139, 0, 0}), IsEmpty());
  EXPECT_THAT(ma::findRecordsFor(PldmPackage(), kAdapter), IsEmpty());
}

TEST(PldmMatch, PassesOverDownstreamRecords) {
  const PldmPackage package =
      ma::parsePldmPackage(PldmBuilder(2).addDownstream(PldmDevice(0x1AF4, 0x1041)).build().bytes);
  ASSERT_EQ(package.downstreamDevices.size(), 1U);
  EXPECT_THAT(ma::findRecordsFor(package, kAdapter), IsEmpty());
}

}  // namespace
