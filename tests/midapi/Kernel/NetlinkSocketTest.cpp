// Over the kernel of the machine: its controller of generic netlink answers everybody.

#include <chrono>
#include <gmock/gmock.h>
#include <linux/genetlink.h>
#include <system_error>

#include "midapi/Kernel/DevlinkMessages.h"
#include "midapi/Kernel/NetlinkSocket.h"
#include "tests/midapi/Kernel/NetlinkBuilder.h"

namespace {

using ma::NetlinkSocket;
using std::chrono::milliseconds;

constexpr std::uint32_t kSequence = 3;

TEST(NetlinkSocket, IsAnsweredByTheKernel) {
  NetlinkSocket socket;
  socket.send(ma::makeFamilyRequest(kSequence));
  const auto answer = socket.receive(milliseconds(5000));
  ASSERT_TRUE(answer);
  // Where the kernel has no devlink it says so, and nothing else.
  const auto ack = ma::findAck(*answer, kSequence);
  EXPECT_TRUE(ma::findFamily(*answer, kSequence) || (ack && ack->error == ENOENT));
}

TEST(NetlinkSocket, HandsOutTheKernelsRefusal) {
  NetlinkSocket socket;
  test::Bytes request = test::genericMessage(GENL_ID_CTRL, 0xEE, kSequence, {});
  request[6] = 5;  // NLM_F_REQUEST | NLM_F_ACK
  socket.send(request);
  const auto answer = socket.receive(milliseconds(5000));
  ASSERT_TRUE(answer);
  const auto ack = ma::findAck(*answer, kSequence);
  ASSERT_TRUE(ack);
  EXPECT_EQ(ack->error, EOPNOTSUPP);
}

TEST(NetlinkSocket, WaitsNoLongerThanItIsTold) {
  NetlinkSocket socket;
  EXPECT_FALSE(socket.receive(milliseconds(1)));
}

TEST(NetlinkSocket, GivesWhatIsThereWhenNobodyWaitsAnyMore) {
  NetlinkSocket socket;
  socket.send(ma::makeFamilyRequest(kSequence));
  socket.endWaiting();
  EXPECT_TRUE(socket.receive(milliseconds(0)));
  while (socket.receive(std::chrono::hours(1))) {
  }
}

TEST(NetlinkSocket, SaysWhyItCannotJoin) {
  NetlinkSocket socket;
  try {
    socket.join(0);
    FAIL() << "group 0 was joined";
  } catch (const std::system_error& fault) {
    EXPECT_THAT(fault.what(), testing::HasSubstr("cannot join a netlink group"));
    EXPECT_EQ(fault.code().value(), EINVAL);
  }
}

}  // namespace
