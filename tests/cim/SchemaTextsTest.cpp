// The value names against the numbers by which the code knows the same things.

#include <cstdint>
#include <gmock/gmock.h>

#include "cim/InstallCharacteristics.h"
#include "cim/InstallOptions.h"
#include "cim/MethodSignatures.h"
#include "cim/OperationalStatus.h"
#include "cim/SchemaTexts.h"
#include "cim/ValueTables.h"
#include "core/ClassTexts.h"
#include "core/ValueNames.h"

namespace {

using core::findValueName;

TEST(SchemaTexts, AreThoseOfTheSchemasClasses) {
  core::ClassTexts texts;
  cim::addSchemaTexts(texts);
  ASSERT_NE(texts.find("cim_job"), nullptr);
  EXPECT_TRUE(texts.find("CIM_Job")->isAbstract);
  EXPECT_FALSE(texts.find("CIM_ConcreteJob")->isAbstract);
  EXPECT_EQ(texts.find("CIM_ConcreteJob")->version, "2.41.0");
  EXPECT_EQ(texts.find("Orvex_RegisteredProfile")->version, "1.0.0");
  EXPECT_EQ(texts.find("Orvex_ConcreteJob"), nullptr);
}

TEST(ValueTables, NameTheStatusInUse) {
  EXPECT_EQ(findValueName(cim::kOperationalStatuses, cim::kOperationalStatusOk), "OK");
}

TEST(ValueTables, NameTheOptionsOfAnInstallation) {
  EXPECT_EQ(findValueName(cim::kInstallOptions, cim::kDeferTargetReset),
            "Defer target/system reset");
  EXPECT_EQ(findValueName(cim::kInstallOptions, cim::kForceInstallation), "Force installation");
  EXPECT_EQ(findValueName(cim::kInstallOptions, cim::kUpdate), "Update");
  EXPECT_EQ(findValueName(cim::kInstallOptions, cim::kPassword), "Password");
  EXPECT_EQ(findValueName(cim::kInstallOptions, cim::kLogOption), "Log");
  EXPECT_EQ(findValueName(cim::kInstallOptions, cim::kAdministrativeMode), "AdministrativeMode");
  EXPECT_EQ(findValueName(cim::kInstallOptions, cim::kTargetTypes), "Target Types");
  EXPECT_EQ(findValueName(cim::kInstallOptions, cim::kTargetTypes + 1), "Vendor Specific");
}

TEST(ValueTables, NameWhatAnInstallationTakes) {
  EXPECT_EQ(findValueName(cim::kInstallCharacteristics, cim::kTargetAutomaticReset),
            "Target automatic reset");
  EXPECT_EQ(findValueName(cim::kInstallCharacteristics, cim::kManualRebootRequired),
            "Manual Reboot Required");
  EXPECT_EQ(findValueName(cim::kInstallCharacteristics, cim::kNoRebootRequired),
            "No Reboot Required");
  EXPECT_EQ(findValueName(cim::kInstallCharacteristics, cim::kMayBeAddedToCollection),
            "MAY be added to specified Collection");
}

TEST(ValueTables, NameEveryReturnCode) {
  using enum cim::InstallReturn;
  for (const std::uint32_t code :
       {kCompletedWithNoError, kUnspecifiedError, kFailed, kInvalidParameter, kTargetInUse,
        kJobStarted, kUnsupportedTargetType, kDowngradeNotSupported, kNotEnoughMemory,
        kNotApplicableToTarget, kCollectionNotSupported}) {
    EXPECT_NE(findValueName(cim::kInstallReturns, code), "") << code;
    EXPECT_NE(findValueName(cim::kCheckReturns, code), "") << code;
  }
}

TEST(ValueTables, NameAnInstallationAndACheckAlikeButForTheirSuccess) {
  for (const core::ValueName& value : cim::kInstallReturns) {
    EXPECT_EQ(findValueName(cim::kCheckReturns, value.value),
              value.value == "0" ? "Completed with No Error" : value.name);
  }
  EXPECT_EQ(std::size(cim::kCheckReturns), std::size(cim::kInstallReturns));
}

}  // namespace
