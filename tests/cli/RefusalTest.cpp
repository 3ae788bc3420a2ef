#include <gmock/gmock.h>

#include "cli/Refusal.h"
#include "tests/support/TempDirectory.h"

namespace {

using cli::adviseOnRefusal;
using testing::AllOf;
using testing::HasSubstr;

constexpr const char* kTypesDiffer =
    "EDowngradeDetected:The selected flash image cannot be used because it does not contain the "
    "same image types. Please select a flash file with matching image types.";

std::string adviceFor(const std::string& reason, bool hasTypes = false, bool isForced = false) {
  return adviseOnRefusal(5, reason, {"", hasTypes, isForced});
}

TEST(RefusalAdvice, FollowsTheReason) {
  EXPECT_THAT(adviceFor("EDowngradeDetected:Downgrade was detected for x. Try to use "
                        "FORCE_INSTALL option."),
              HasSubstr("--force"));
  EXPECT_THAT(adviceFor("ETargetInUse:x"), HasSubstr("wait"));
  EXPECT_THAT(adviceFor("EJobIsRunning:x"), HasSubstr("wait"));
  EXPECT_THAT(adviceFor("EInvalidParameter:Invalid parameter detected for TargetTypes. X is not "
                        "recognized"),
              HasSubstr("IMG_UEFI"));
  EXPECT_THAT(adviceFor("EInvalidParameter:Invalid parameter detected for file:///x"),
              HasSubstr("damaged"));
  EXPECT_THAT(adviceFor("EInvalidUri:x"), HasSubstr("file:///"));
  EXPECT_THAT(adviceFor("EUriDoesNotExist:x"), HasSubstr("check the path"));
  EXPECT_THAT(adviceFor("EAdapterNotSupported:x"), HasSubstr("another device"));
  EXPECT_THAT(adviceFor("ENotApplicableForTarget:x"), HasSubstr("cannot be replaced"));
}

TEST(RefusalAdvice, OnImageTypesDependsOnTheRequest) {
  EXPECT_THAT(adviceFor(kTypesDiffer), HasSubstr("--types IMG_PXE"));
  EXPECT_THAT(adviceFor(kTypesDiffer, true), HasSubstr("the file lacks a type"));
  EXPECT_THAT(adviceFor(kTypesDiffer, false, true), HasSubstr("OEMCustomizeable"));
}

TEST(RefusalAdvice, LooksAtTheFileFirst) {
  const test::TempDirectory directory;
  const std::string missing = (directory.path() / "missing.rom").string();
  EXPECT_EQ(adviseOnRefusal(5, "EUriDoesNotExist:x", {missing}),
            "there is no file '" + missing + "'; check the path");
  EXPECT_EQ(adviseOnRefusal(5, "EUriDoesNotExist:x", {directory.path().string()}),
            "'" + directory.path().string() + "' is a directory; name the image file in it");
  EXPECT_THAT(adviseOnRefusal(5, "EUriDoesNotExist:x", {"/dev/null"}),
              HasSubstr("no regular file"));
  const std::string file = directory.write("a.rom", std::string("x")).string();
  EXPECT_THAT(adviseOnRefusal(2, "EAdapterNotSupported:x", {file}), HasSubstr("another device"));
}

TEST(RefusalAdvice, IsSilentAboutWhatItDoesNotKnow) {
  EXPECT_EQ(adviceFor("something new"), "");
  EXPECT_EQ(adviceFor(""), "");
}

TEST(RefusalAdvice, NamesTargetsWhenTheTargetIsNone) {
  EXPECT_THAT(adviseOnRefusal(4106, "", {}), HasSubstr("name a port or an adapter"));
}

TEST(FailureAdvice, TellsALockFromTheRest) {
  cli::JobReport job;
  job.errorText = "Timeout Error";
  EXPECT_THAT(cli::adviseOnFailure(job), AllOf(HasSubstr("another program"), HasSubstr("Timeout")));
  job.errorText = "Sector stuck";
  EXPECT_THAT(cli::adviseOnFailure(job), HasSubstr("quorvel adapters"));
}

}  // namespace
