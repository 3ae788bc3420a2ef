#include <gtest/gtest.h>
#include <vector>

#include "midapi/Kernel/FlashOutcome.h"

namespace {

using ma::FirmwareVersions;
using ma::FlashEntry;
using ma::FlashOutcome;
using Versions = std::vector<FirmwareVersions>;

const FlashEntry kEntry{80063,
                        1,
                        {{"fw.undi", "1.0.0"}, {"fw.mgmt", "7.1.0"}},
                        {{"fw.undi", "1.1.0"}, {"fw.mgmt", "7.2.0"}},
                        {}};

Versions stored(const std::string& undi, const std::string& mgmt) {
  return {{"fw.undi", "1.0.0", undi, undi.empty()}, {"fw.mgmt", "7.1.0", mgmt, mgmt.empty()}};
}

// What works now is what was there before, and the driver tells nothing else.
const Versions kRunningAlone{{"fw.undi", "1.0.0", ""}, {"fw.mgmt", "7.1.0", ""}};

TEST(FlashOutcome, IsToldByTheStoredVersions) {
  EXPECT_EQ(judge(kEntry, stored("1.1.0", "7.2.0")), FlashOutcome::Written);
  EXPECT_EQ(judge(kEntry, stored("1.0.0", "7.1.0")), FlashOutcome::NotWritten);
  EXPECT_EQ(judge(kEntry, stored("1.1.0", "7.1.0")), FlashOutcome::Mixed);
  EXPECT_EQ(judge(kEntry, stored("", "7.1.0")), FlashOutcome::Mixed);
}

TEST(FlashOutcome, IsUnknownWhereVersionsCannotTell) {
  EXPECT_EQ(judge(kEntry, {}), FlashOutcome::Unknown);
  EXPECT_EQ(judge(kEntry, Versions{{"fw", "1.0", ""}}), FlashOutcome::Unknown);
  FlashEntry ofNoVersions = kEntry;
  ofNoVersions.expected.clear();
  EXPECT_EQ(judge(ofNoVersions, stored("1.0.0", "7.1.0")), FlashOutcome::Unknown);
}

TEST(FlashOutcome, IsMixedWhereNothingIsStoredAnyMore) {
  EXPECT_EQ(judge(kEntry, stored("", "")), FlashOutcome::Mixed);
  EXPECT_EQ(findDifference(kEntry.expected, stored("", "")),
            "fw.undi is (none), and the file has 1.1.0");
  EXPECT_EQ(describeStored(stored("", "")), "fw.undi (none), fw.mgmt (none)");
}

TEST(FlashOutcome, IsNotToldByWhatRuns) {
  EXPECT_EQ(judge(kEntry, kRunningAlone), FlashOutcome::Unknown);
  EXPECT_EQ(findDifference(kEntry.expected, kRunningAlone), "");
  EXPECT_EQ(describeStored(kRunningAlone), "nothing that its driver tells");
}

TEST(FlashOutcome, ComparesWhatIsStoredBesideWhatRunsAlone) {
  const Versions versions{{"fw.undi", "1.0.0", ""}, {"fw.mgmt", "7.1.0", "7.2.0"}};
  EXPECT_EQ(findDifference(kEntry.expected, versions), "");
  EXPECT_EQ(describeStored(versions), "fw.mgmt 7.2.0");
}

TEST(FlashOutcome, IsUnknownOfTheVersionsThatWereThereBefore) {
  FlashEntry again = kEntry;
  again.expected = again.before;
  EXPECT_EQ(judge(again, stored("1.0.0", "7.1.0")), FlashOutcome::Unknown);
  EXPECT_EQ(judge(again, stored("", "7.1.0")), FlashOutcome::Mixed);
}

TEST(FlashOutcome, IsUnknownWhereAVersionIsNotToldAnyMore) {
  EXPECT_EQ(judge(kEntry, Versions{{"fw.undi", "", "1.1.0"}}), FlashOutcome::Unknown);
  EXPECT_EQ(judge(kEntry, Versions{{"fw.undi", "", "1.0.0"}}), FlashOutcome::Unknown);
  EXPECT_EQ(judge(kEntry, Versions{{"fw.undi", "", "1.0.7"}}), FlashOutcome::Mixed);
}

TEST(FlashOutcome, NamesTheFirstVersionThatIsNotToldAnyMore) {
  const Versions undi{{"fw.undi", "", "1.1.0"}};
  EXPECT_EQ(findUntold(kEntry.expected, kEntry.before, undi), "fw.mgmt");
  EXPECT_EQ(findUntold(kEntry.expected, {}, undi), "");
  EXPECT_EQ(findUntold(kEntry.expected, kEntry.before, stored("", "")), "");
}

TEST(FlashOutcome, NamesTheFirstVersionThatDiffers) {
  EXPECT_EQ(findDifference(kEntry.expected, stored("1.1.0", "7.2.0")), "");
  EXPECT_EQ(findDifference(kEntry.expected, stored("1.1", "v7.2")), "");
  EXPECT_EQ(findDifference(kEntry.expected, stored("1.0.0", "7.1.0")),
            "fw.undi is 1.0.0, and the file has 1.1.0");
  EXPECT_EQ(findDifference(kEntry.expected, stored("1.1.0", "")),
            "fw.mgmt is (none), and the file has 7.2.0");
}

TEST(FlashOutcome, DoesNotCompareWhatTheDriverDoesNotName) {
  EXPECT_EQ(findDifference(kEntry.expected, Versions{{"fw.undi", "", "1.1.0"}}), "");
}

TEST(FlashOutcome, TellsWhatIsStored) {
  EXPECT_EQ(describeStored(stored("", "7.1.0")), "fw.undi (none), fw.mgmt 7.1.0");
  EXPECT_EQ(ma::describeStored({}), "nothing that its driver tells");
}

}  // namespace
