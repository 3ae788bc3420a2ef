#include <gmock/gmock.h>

#include "client/Fault.h"
#include "client/HostHttp.h"

namespace {

// Nobody listens on port 1 of this machine.
constexpr std::uint16_t kNobody = 1;

TEST(HostHttp, SendsNothingWhileItIsOpened) {
  EXPECT_TRUE(client::openHttp({false, "", "127.0.0.1", kNobody}, ""));
}

TEST(HostHttp, TellsThatNobodyAnswers) {
  const client::HostConnection::Send send = client::openHttp({false, "", "127.0.0.1", kNobody}, "");
  try {
    static_cast<void>(send({}, "", {}));
    FAIL() << "somebody answered";
  } catch (const http::ClientFault& fault) {
    EXPECT_EQ(fault.kind(), http::ClientFault::Kind::Connection);
    EXPECT_FALSE(fault.mayBeDone());
  }
}

TEST(HostHttp, SendsAReadableLoginToThisMachineAlone) {
  // An address of documentation (RFC 5737): no machine has it.
  const client::HostConnection::Send send =
      client::openHttp({false, "admin", "192.0.2.1", kNobody}, "");
  EXPECT_THROW(static_cast<void>(send({}, "", {})), http::ClientFault);
}

}  // namespace
