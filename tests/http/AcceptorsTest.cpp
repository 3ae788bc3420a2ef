#include <filesystem>
#include <gmock/gmock.h>
#include <string>

#include "http/Acceptors.h"
#include "http/Peer.h"
#include "http/ServerOptions.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Throws.h"

namespace {

namespace asio = http::asio;
using http::Endpoint;
using http::Listener;
using http::openListeners;
using http::SetupFault;
using testing::AllOf;
using testing::HasSubstr;
using testing::SizeIs;

class AcceptorsTest : public testing::Test {
 protected:
  [[nodiscard]] std::vector<Listener> open(const std::vector<Endpoint>& endpoints) {
    return openListeners(m_context, endpoints);
  }

  asio::io_context m_context;
};

// One of the addresses for documentation, which no machine has.
const Endpoint kMissing{"192.0.2.1", 0, false};

TEST_F(AcceptorsTest, TellThePortThatTheSystemChose) {
  const std::vector<Listener> listeners = open({{"127.0.0.1", 0, true}, {"::1", 0, false}});

  ASSERT_THAT(listeners, SizeIs(2));
  EXPECT_NE(listeners[0].endpoint.port, 0);
  EXPECT_EQ(listeners[0].endpoint.port,
            http::toTcpEndpoint(listeners[0].acceptor.local_endpoint()).port());
  EXPECT_TRUE(listeners[0].endpoint.isTls);
  EXPECT_EQ(listeners[1].endpoint.address, "::1");
}

TEST_F(AcceptorsTest, ListenOnALocalSocketBesideAddresses) {
  const test::TempDirectory directory;
  const std::string path = (directory.path() / "run" / "a.sock").string();
  {
    const std::vector<Listener> listeners = open({{"127.0.0.1", 0, false}, {"", 0, false, path}});
    ASSERT_THAT(listeners, SizeIs(2));
    EXPECT_EQ(listeners[1].endpoint.text(), "unix:" + path);
    EXPECT_TRUE(std::filesystem::is_socket(path));
    EXPECT_THAT(
        [&] {
          static_cast<void>(open({{"", 0, false, path}}));
        },
        test::ThrowsExactly<SetupFault>(AllOf(HasSubstr("Cannot listen on unix:" + path),
                                              HasSubstr("another server listens there"),
                                              HasSubstr("another path"))));
  }
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(AcceptorsTest, NameALocalSocketThatCannotBe) {
  for (const std::string& path :
       {std::string("/nowhere/at/all/a.sock"), "/tmp/" + std::string(200, 'x')}) {
    EXPECT_THAT(
        [&] {
          static_cast<void>(open({{"", 0, false, path}}));
        },
        test::ThrowsExactly<SetupFault>(HasSubstr("Cannot listen on unix:" + path)));
  }
}

TEST_F(AcceptorsTest, LeaveTheOtherVersionOfIpAlone) {
  const std::vector<Listener> first = open({{"::", 0, false}});
  const std::uint16_t port = first[0].endpoint.port;

  EXPECT_THAT(open({{"0.0.0.0", port, false}}), SizeIs(1));
}

TEST_F(AcceptorsTest, NameAPortInUse) {
  const std::vector<Listener> first = open({{"127.0.0.1", 0, false}});
  const Endpoint taken = first[0].endpoint;

  EXPECT_THAT(
      [&] {
        static_cast<void>(open({{"::1", 0, false}, taken}));
      },
      test::ThrowsExactly<SetupFault>(AllOf(HasSubstr("Cannot listen on " + taken.text()),
                                            HasSubstr("Address already in use"),
                                            HasSubstr("another port"))));
}

TEST_F(AcceptorsTest, NameATextThatIsNoAddress) {
  EXPECT_THAT(
      [&] {
        static_cast<void>(open({{"localhost", 1234, false}}));
      },
      test::ThrowsExactly<SetupFault>(
          AllOf(HasSubstr("localhost:1234"), HasSubstr("is no IP address"))));
}

TEST_F(AcceptorsTest, NameTheAddressWhereThisMachineHasNone) {
  EXPECT_THAT([&] { static_cast<void>(open({kMissing})); },
              test::ThrowsExactly<SetupFault>(
                  AllOf(HasSubstr("192.0.2.1:0"), HasSubstr("no such address"))));
}

TEST_F(AcceptorsTest, GoOnWithoutAMissingAddressWhereThereIsAnother) {
  const test::LogCapture log;

  const std::vector<Listener> listeners = open({kMissing, {"127.0.0.1", 0, false}});

  ASSERT_THAT(listeners, SizeIs(1));
  EXPECT_EQ(listeners[0].endpoint.address, "127.0.0.1");
  EXPECT_THAT(log.records(), test::HasRecord(test::LogLevel::Error, "http::openListeners",
                                             AllOf(HasSubstr("192.0.2.1:0"),
                                                   HasSubstr("The other addresses are served"))));
}

TEST_F(AcceptorsTest, NeedAnEndpoint) {
  EXPECT_THAT([&] { static_cast<void>(open({})); },
              test::ThrowsExactly<SetupFault>(HasSubstr("no address to listen on")));
}

}  // namespace
