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

}  // namespace
