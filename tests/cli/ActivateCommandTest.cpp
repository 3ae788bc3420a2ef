#include <nlohmann/json.hpp>

#include "tests/support/QuorvelFixture.h"

namespace {

using test::ProgramResult;
using testing::AllOf;
using testing::HasSubstr;

class ActivateCommandTest : public test::QuorvelFixture {};

TEST_F(ActivateCommandTest, SaysThatFirmwareIsInForce) {
  addPxeAdapter("0000:03:00", 2);
  for (const char* target : {"0000:03:00", "0000:03:00.1"}) {
    const ProgramResult result = run({"activate", target});
    EXPECT_EQ(result.exitStatus, 0) << result.errors;
    EXPECT_EQ(result.output, "0000:03:00: what its flash holds is in force\n");
    EXPECT_EQ(result.errors, "");
  }
  EXPECT_EQ(runJson({"activate", "0000:03:00"}),
            Json({{"adapter", "0000:03:00"},
                  {"active", true},
                  {"text", "what its flash holds is in force"}}));
}

TEST_F(ActivateCommandTest, ListsWhatThereIsWhenTheTargetIsUnknown) {
  addPxeAdapter("0000:03:00", 2);
  for (const char* target : {"0000:09:00.0", "0000:09:00", "nonsense"}) {
    expectFailure(
        {"activate", target, "--json"},
        AllOf(HasSubstr(std::string("no adapter or port '") + target + "'"),
              HasSubstr("adapters: 0000:03:00\n"), HasSubstr("0000:03:00.0 0000:03:00.1\n")));
  }
}

TEST_F(ActivateCommandTest, RefusesWrongUsage) {
  expectUsageFault({"activate"}, HasSubstr("TARGET is required"));
  expectUsageFault({"activate", "0000:03:00", "--lock-timeout", "soon"},
                   HasSubstr("'soon' is no length of time"));
  expectUsageFault({"activate", "0000:03:00", "--host=http://127.0.0.1:1"},
                   HasSubstr("'activate' does not go with --host"));
}

}  // namespace
