#include "tests/support/QuorvelFixture.h"

namespace {

using testing::HasSubstr;

class WatchCommandTest : public test::QuorvelFixture {};

TEST_F(WatchCommandTest, MissesTheJobsThatEndedWithTheirProcess) {
  expectFailure({"watch", "1"}, HasSubstr("there is no job '1'; jobs of this program end with it"));
}

TEST_F(WatchCommandTest, NeedsAJob) {
  expectUsageFault({"watch"}, HasSubstr("JOB is required"));
}

}  // namespace
