#include <gmock/gmock.h>

#include "http/Endpoint.h"

namespace {

using http::Endpoint;
using http::joinHostAndPort;

TEST(Endpoint, IsWrittenAsAUserDoes) {
  EXPECT_EQ((Endpoint{"127.0.0.1", 5988, false}).text(), "127.0.0.1:5988");
  EXPECT_EQ((Endpoint{"::1", 5989, true}).text(), "[::1]:5989");
}

TEST(JoinHostAndPort, PutsBracketsRoundWhatHasColons) {
  EXPECT_EQ(joinHostAndPort("lab-7.example", 5988), "lab-7.example:5988");
  EXPECT_EQ(joinHostAndPort("fe80::1%eth0", 80), "[fe80::1%eth0]:80");
}

}  // namespace
