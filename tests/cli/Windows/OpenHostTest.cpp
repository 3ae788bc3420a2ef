#include <gmock/gmock.h>

#include "cli/OpenHost.h"
#include "client/Fault.h"

namespace {

TEST(OpenHost, IsRefusedInWords) {
  cli::GlobalOptions options;
  options.host = "http://127.0.0.1:5988";
  try {
    static_cast<void>(cli::openHost(options));
    FAIL() << "connected";
  } catch (const client::Fault& fault) {
    EXPECT_EQ(fault.kind(), client::Fault::Kind::Usage);
    EXPECT_THAT(fault.what(), testing::HasSubstr("on Linux only"));
  }
}

}  // namespace
