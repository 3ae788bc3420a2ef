#include <algorithm>
#include <gmock/gmock.h>

#include "agent/MainDllEntry.h"
#include "core/CimBroker.h"
#include "tests/agent/ProviderMemory.h"
#include "tests/support/LogCapture.h"
#include "tests/support/SourcePlace.h"
#include "tests/support/Throws.h"

namespace {

using test::IsRecordOf;
using test::LogLevel;
using testing::ElementsAre;

constexpr const char* kSource = "MainDllEntry";
constexpr const char* kRegistering = "Registering Software Update agent...";

class ModuleEntry : public testing::Test {
 protected:
  // Counts what was built by the tests of this process; the agent outlives them.
  ~ModuleEntry() override { countBuilt(); }

  int countBuilt() {
    const std::vector<std::string> added = m_log.messages("core::CimClasses::add");
    s_built += static_cast<int>(
        std::count(added.begin(), added.end(), "Adding new class: Orvex_ConcreteJob"));
    m_log.clear();
    return s_built;
  }

  // Returns the records of the entry, without those of what it builds.
  std::vector<test::LogRecord> records() const {
    std::vector<test::LogRecord> records = m_log.records();
    std::erase_if(records, [](const test::LogRecord& record) { return record.source != kSource; });
    return records;
  }

  static std::vector<core::CimAgent*> agents() { return core::GetCimBroker().getAgents(); }

  test::PlacedLog m_log;

 private:
  static int s_built;
};

int ModuleEntry::s_built = 0;

// The first: it needs a process without an agent.
TEST_F(ModuleEntry, BuildsTheAgentAgainAfterAFailure) {
#ifdef QUORVEL_TEST_THREAD_SANITIZER
  GTEST_SKIP() << "ThreadSanitizer lets no program have an operator new of its own";
#endif
  const std::size_t before = agents().size();
  {
    const test::ProviderMemory memory(2);
    EXPECT_THAT(
        [] { DllMain(nullptr, 1, nullptr); },
        test::ThrowsExactly<utils::Exception>(test::IsAssertion("CimClasses", "cimClass != NULL")));
  }
  EXPECT_EQ(agents().size(), before);
  EXPECT_THAT(records(), ElementsAre(IsRecordOf(kSource, LogLevel::Debug, "DllMain",
                                                "SoftwareUpdate Agent DllMain(1)")));
  EXPECT_EQ(countBuilt(), 0);

  EXPECT_EQ(DllMain(nullptr, 1, nullptr), 1);
  EXPECT_EQ(agents().size(), before + 1);
  EXPECT_EQ(countBuilt(), 1);
}

TEST_F(ModuleEntry, BuildsTheAgentOnceAndLogsEachRegistration) {
  core::SoftwareUpdateAgent* const agent = RegisterSoftwareUpdateAgent();

  EXPECT_EQ(RegisterSoftwareUpdateAgent(), agent);

  EXPECT_THAT(
      records(),
      ElementsAre(
          IsRecordOf(kSource, LogLevel::Debug, "RegisterSoftwareUpdateAgent", kRegistering),
          IsRecordOf(kSource, LogLevel::Debug, "RegisterSoftwareUpdateAgent", kRegistering)));
  EXPECT_EQ(countBuilt(), 1);
}

TEST_F(ModuleEntry, AddsTheAgentWhenTheProcessAttaches) {
  const std::size_t before = agents().size();

  EXPECT_EQ(DllMain(nullptr, 1, nullptr), 1);

  EXPECT_THAT(
      records(),
      ElementsAre(
          IsRecordOf(kSource, LogLevel::Debug, "DllMain", "SoftwareUpdate Agent DllMain(1)"),
          IsRecordOf(kSource, LogLevel::Debug, "RegisterSoftwareUpdateAgent", kRegistering)));
  ASSERT_EQ(agents().size(), before + 1);
  EXPECT_EQ(agents().back(), RegisterSoftwareUpdateAgent());
}

TEST_F(ModuleEntry, LeavesTheAgentToTheBrokerWhenTheProcessDetaches) {
  DllMain(nullptr, 1, nullptr);
  const std::vector<core::CimAgent*> before = agents();

  EXPECT_EQ(DllMain(nullptr, 0, nullptr), 1);

  EXPECT_EQ(agents(), before);
  EXPECT_TRUE(agents().back()->hasClass("Orvex_ConcreteJob"));
}

TEST_F(ModuleEntry, OnlyLogsAnyOtherReason) {
  const std::size_t before = agents().size();
  for (const std::uint32_t reason : {0u, 2u, 3u, 4u}) {
    EXPECT_EQ(DllMain(nullptr, reason, nullptr), 1);
    EXPECT_THAT(m_log.records(), ElementsAre(IsRecordOf(kSource, LogLevel::Debug, "DllMain",
                                                        "SoftwareUpdate Agent DllMain(" +
                                                            std::to_string(reason) + ")")));
    m_log.clear();
  }
  EXPECT_EQ(agents().size(), before);
}

}  // namespace
