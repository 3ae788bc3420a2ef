#include <gmock/gmock.h>
#include <string>

#include "daemon/Addresses.h"

namespace {

TEST(IsLoopbackAddress, KnowsTheAddressesOfThisMachineAlone) {
  for (const char* const address : {"127.0.0.1", "127.8.9.10", "::1", "::ffff:127.0.0.1"}) {
    EXPECT_TRUE(quorveld::isLoopbackAddress(address)) << address;
  }
  for (const char* const address :
       {"0.0.0.0", "::", "192.0.2.7", "2001:db8::1", "localhost", "127.0.0.1.example", ""}) {
    EXPECT_FALSE(quorveld::isLoopbackAddress(address)) << address;
  }
}

struct EndpointCase {
  const char* text;
  const char* address;
  std::uint16_t port;
  bool isTls;
};

TEST(ParseEndpoint, ReadsAddressAndPort) {
  const EndpointCase cases[] = {
      {"127.0.0.1:5988", "127.0.0.1", 5988, false},
      {"https:0.0.0.0:5989", "0.0.0.0", 5989, true},
      {"[::1]:0", "::1", 0, false},
      {"https:[::]:65535", "::", 65535, true},
  };
  for (const EndpointCase& expected : cases) {
    const auto endpoint = quorveld::parseEndpoint(expected.text);
    ASSERT_TRUE(endpoint) << expected.text;
    EXPECT_EQ(endpoint->address, expected.address);
    EXPECT_EQ(endpoint->port, expected.port);
    EXPECT_EQ(endpoint->isTls, expected.isTls);
  }
}

TEST(ParseEndpoint, ReadsThePathOfALocalSocket) {
  const auto endpoint = quorveld::parseEndpoint("unix:/run/orvex/quorveld.sock");
  ASSERT_TRUE(endpoint);
  EXPECT_EQ(endpoint->path, "/run/orvex/quorveld.sock");
  EXPECT_EQ(endpoint->text(), "unix:/run/orvex/quorveld.sock");
  EXPECT_FALSE(quorveld::parseEndpoint("unix:"));
  EXPECT_FALSE(quorveld::parseEndpoint("unix:quorveld.sock"));
}

TEST(ParseEndpoint, TakesNothingElse) {
  for (const char* const text :
       {"", ":", "5988", "127.0.0.1", "127.0.0.1:", "127.0.0.1:65536", "127.0.0.1:-1",
        "127.0.0.1:80x", "::1:5988", "[127.0.0.1]:80", "[]:80", "localhost:80", "http:127.0.0.1:80",
        "https://127.0.0.1:80", "https:", "256.0.0.1:80"}) {
    EXPECT_FALSE(quorveld::parseEndpoint(text)) << text;
  }
}

TEST(IsLoopbackHost, TakesTheNamesOfThisMachineAlone) {
  for (const char* const host :
       {"localhost", "LocalHost:5988", "127.0.0.1", "127.0.0.1:5988", "[::1]", "[::1]:5988"}) {
    EXPECT_TRUE(quorveld::isLoopbackHost(host)) << host;
  }
  for (const char* const host :
       {"", ":5988", "a@localhost", "evil.example", "evil.example:5988", "localhost.evil.example",
        "127.0.0.1.evil.example", "192.0.2.7", "[2001:db8::1]:5988"}) {
    EXPECT_FALSE(quorveld::isLoopbackHost(host)) << host;
  }
}

}  // namespace
