#include <gmock/gmock.h>
#include <string>

#include "http/PeerGroup.h"

namespace {

using http::toPeerGroup;

// Any program of this machine may send from each of them.
TEST(PeerGroup, IsOneForAllLoopbackAddresses) {
  for (const char* const address : {"127.0.0.1", "127.0.0.2", "127.255.255.254", "::1",
                                    "::ffff:127.0.0.1", "::ffff:127.3.4.5"}) {
    EXPECT_EQ(toPeerGroup(std::string(address)), http::kLoopbackGroup) << address;
  }
}

TEST(PeerGroup, IsAnIpv4AddressItself) {
  EXPECT_EQ(toPeerGroup(std::string("192.0.2.7")), "192.0.2.7");
  EXPECT_EQ(toPeerGroup(std::string("::ffff:192.0.2.7")), "192.0.2.7");
  EXPECT_EQ(toPeerGroup(std::string("128.0.0.1")), "128.0.0.1");
}

TEST(PeerGroup, IsTheFirst64BitsOfAnIpv6Address) {
  EXPECT_EQ(toPeerGroup(std::string("2001:db8:0:1::1")), "2001:db8:0:1::/64");
  EXPECT_EQ(toPeerGroup(std::string("2001:db8:0:1:ff:2:3:4")), "2001:db8:0:1::/64");
  EXPECT_EQ(toPeerGroup(std::string("2001:db8:0:2::1")), "2001:db8:0:2::/64");
  EXPECT_EQ(toPeerGroup(std::string("fe80::1%3")), toPeerGroup(std::string("fe80::2")));
}

TEST(PeerGroup, IsAnotherTextItself) {
  EXPECT_EQ(toPeerGroup(std::string("elsewhere")), "elsewhere");
  EXPECT_EQ(toPeerGroup(std::string()), "");
}

TEST(PeerGroup, IsTheSameOfAnAddressAsOfItsText) {
  EXPECT_EQ(toPeerGroup(boost::asio::ip::make_address("127.9.9.9")), http::kLoopbackGroup);
  EXPECT_EQ(toPeerGroup(boost::asio::ip::make_address("2001:db8::5")), "2001:db8::/64");
}

}  // namespace
