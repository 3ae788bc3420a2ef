#include <boost/asio/local/stream_protocol.hpp>
#include <gmock/gmock.h>

#include "http/Peer.h"
#include "http/PeerGroup.h"

namespace {

using http::describePeer;
using http::Peer;

struct PeerCase {
  const char* address;
  const char* shown;
  bool isLoopback;
};

class DescribePeer : public testing::TestWithParam<PeerCase> {};

TEST_P(DescribePeer, GivesTextAndWhetherItIsThisMachine) {
  const Peer peer = describePeer(boost::asio::ip::make_address(GetParam().address));

  EXPECT_EQ(peer.address, GetParam().shown);
  EXPECT_EQ(peer.isLoopback, GetParam().isLoopback);
  EXPECT_EQ(peer.group, http::toPeerGroup(std::string(GetParam().address)));
}

INSTANTIATE_TEST_SUITE_P(, DescribePeer,
                         testing::Values(PeerCase{"192.0.2.7", "192.0.2.7", false},
                                         PeerCase{"127.0.0.1", "127.0.0.1", true},
                                         PeerCase{"127.3.4.5", "127.3.4.5", true},
                                         PeerCase{"128.0.0.1", "128.0.0.1", false},
                                         PeerCase{"::1", "::1", true},
                                         PeerCase{"2001:db8::7", "2001:db8::7", false},
                                         PeerCase{"::ffff:192.0.2.7", "192.0.2.7", false},
                                         PeerCase{"::ffff:127.0.0.1", "127.0.0.1", true}));

TEST(DescribeLocalPeer, GivesAUserOfThisMachineAGroupOfHisOwn) {
  const http::Protocol::endpoint local{boost::asio::local::stream_protocol::endpoint("/tmp/a")};
  const Peer anna = describePeer(local, 1000);
  EXPECT_EQ(anna.address, "unix");
  EXPECT_TRUE(anna.isLoopback);
  EXPECT_EQ(anna.user, 1000u);
  EXPECT_NE(anna.group, describePeer(local, 1001).group);
  EXPECT_NE(anna.group, describePeer(local, std::nullopt).group);
}

TEST(DescribeLocalPeer, KeepsTheUserOfAConnectionByTcp) {
  const auto address = boost::asio::ip::make_address("::ffff:127.0.0.1");
  const Peer peer = describePeer(http::tcp::endpoint(address, 80), 1000);
  EXPECT_EQ(peer.address, "127.0.0.1");
  EXPECT_EQ(peer.group, "user 1000");
  EXPECT_EQ(peer.user, 1000u);
  const Peer unknown = describePeer(http::tcp::endpoint(address, 80), std::nullopt);
  EXPECT_EQ(unknown.group, describePeer(address).group);
}

}  // namespace
