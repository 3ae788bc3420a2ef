#include <gmock/gmock.h>

#include "midapi/AdapterId.h"

namespace {

using ma::AdapterAddress;
using ma::parseAdapterAddress;
using ma::parseCanonicalPortId;
using ma::parseFolderName;
using ma::parsePortId;
using ma::PortId;
using ma::toFolderName;
using ma::toString;
using testing::Eq;
using testing::Optional;

TEST(AdapterId, ReadsAPortIdentifier) {
  EXPECT_THAT(parsePortId("0001:af:1f.7"), Optional(PortId{{1, 0xAF, 0x1F}, 7}));
  EXPECT_THAT(parseAdapterAddress("0001:af:1f"), Optional(AdapterAddress{1, 0xAF, 0x1F}));
}

TEST(AdapterId, AcceptsUpperCaseButDoesNotTakeItForCanonical) {
  EXPECT_THAT(parsePortId("0000:AF:00.0"), Optional(PortId{{0, 0xAF, 0}, 0}));
  EXPECT_THAT(parseCanonicalPortId("0000:AF:00.0"), Eq(std::nullopt));
  EXPECT_THAT(parseCanonicalPortId("0000:af:00.0"), Optional(PortId{{0, 0xAF, 0}, 0}));
}

TEST(AdapterId, WritesCanonicalText) {
  EXPECT_EQ(toString(PortId{{0xA, 0xBC, 0x1D}, 3}), "000a:bc:1d.3");
  EXPECT_EQ(toString(AdapterAddress{0, 3, 0}), "0000:03:00");
  EXPECT_EQ(toFolderName({0, 3, 0}), "0000-03-00");
}

TEST(AdapterId, ReadsBackFolderNamesOfItsOwnOnly) {
  EXPECT_THAT(parseFolderName("000a-bc-1d"), Optional(AdapterAddress{0xA, 0xBC, 0x1D}));
  EXPECT_THAT(parseFolderName("000A-bc-1d"), Eq(std::nullopt));
  EXPECT_THAT(parseFolderName("000a:bc:1d"), Eq(std::nullopt));
}

class MalformedPortId : public testing::TestWithParam<const char*> {};

TEST_P(MalformedPortId, IsRefused) {
  EXPECT_THAT(parsePortId(GetParam()), Eq(std::nullopt));
  EXPECT_THAT(parseCanonicalPortId(GetParam()), Eq(std::nullopt));
}

INSTANTIATE_TEST_SUITE_P(AdapterId, MalformedPortId,
                         testing::Values("", "0000:03:00", "0000:03:00.", "0000:03:00.8",
                                         "0000:03:00.00", "0000:03:20.0", "000:03:00.0",
                                         "0000:3:00.0", "0000:03:00,0", "0000-03-00.0",
                                         "0000:03:00.0 ", " 0000:03:00.0", "g000:03:00.0",
                                         "+000:03:00.0", "0x00:03:00.0", "0000:-3:00.0"));

TEST(AdapterId, RefusesAddressesThatAreNotExactlyThat) {
  EXPECT_THAT(parseAdapterAddress("0000:03:00.0"), Eq(std::nullopt));
  EXPECT_THAT(parseAdapterAddress("0000:03:20"), Eq(std::nullopt));
  EXPECT_THAT(parseAdapterAddress(""), Eq(std::nullopt));
}

TEST(AdapterId, OrdersPortsByPciAddress) {
  EXPECT_LT((PortId{{0, 3, 0}, 1}), (PortId{{0, 3, 1}, 0}));
  EXPECT_LT((PortId{{0, 0xFF, 0}, 0}), (PortId{{1, 0, 0}, 0}));
}

}  // namespace
