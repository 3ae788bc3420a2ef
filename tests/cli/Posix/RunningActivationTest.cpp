// `quorvel activate` while another program has the flash.

#include <optional>

#include "tests/cli/Posix/OtherUpdater.h"
#include "tests/cli/Posix/RunningQuorvel.h"
#include "tests/support/QuorvelFixture.h"

namespace {

using test::OtherUpdater;
using testing::AllOf;
using testing::HasSubstr;

constexpr const char* kAdapter = "0000:03:00";

class RunningActivationTest : public test::QuorvelFixture {};

TEST_F(RunningActivationTest, WaitsForTheFlashAsLongAsItIsTold) {
  addPxeAdapter(kAdapter);
  std::optional<OtherUpdater> other(std::in_place);
  for (const char* time : {"0", "50ms"}) {
    expectFailure({"activate", kAdapter, "--lock-timeout", time},
                  AllOf(HasSubstr("quorvel: activation of 0000:03:00 refused: the flash was held "
                                  "by quorvel_program_test, process "),
                        HasSubstr("\n  next: try again when that program has ended")));
  }
  other.reset();
  EXPECT_EQ(run({"activate", kAdapter, "--lock-timeout", "0"}).exitStatus, 0);
}

TEST_F(RunningActivationTest, IsDoneWhenTheOtherProgramIs) {
  addPxeAdapter(kAdapter);
  std::optional<OtherUpdater> other(std::in_place);
  test::RunningQuorvel quorvel({"activate", kAdapter}, test::OutputTo::Pipe, environment());
  other.reset();
  EXPECT_EQ(quorvel.finish().exitStatus, 0);
}

TEST_F(RunningActivationTest, GivesTheFlashBack) {
  addPxeAdapter(kAdapter);
  EXPECT_EQ(run({"activate", kAdapter}).exitStatus, 0);
  const OtherUpdater other;
}

}  // namespace
