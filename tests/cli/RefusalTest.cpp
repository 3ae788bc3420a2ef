#include <gmock/gmock.h>
#include <sstream>

#include "cli/LocalWords.h"
#include "cli/Refusal.h"
#include "client/BrokerConnection.h"
#include "tests/Os/HungDirectory.h"
#include "tests/support/Programs.h"
#include "tests/support/TempDirectory.h"

namespace {

using cli::adviseOnRefusal;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;

constexpr const char* kTypesDiffer =
    "EDowngradeDetected:The selected flash image cannot be used because it does not contain the "
    "same image types. Please select a flash file with matching image types.";

const client::Connection& here() {
  static core::CimBroker broker;
  static const client::BrokerConnection connection(broker);
  return connection;
}

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
  EXPECT_THAT(adviceFor("EInvalidUri:x"), HasSubstr(cli::toLocalWords("file:///path/to/image")));
  EXPECT_THAT(adviceFor("EUriDoesNotExist:x"), HasSubstr("check the path"));
  EXPECT_THAT(adviceFor("EAdapterNotSupported:x"), HasSubstr("another device"));
  EXPECT_THAT(adviceFor("ENotApplicableForTarget:x"), HasSubstr("cannot be replaced"));
}

TEST(RefusalAdvice, OnImageTypesDependsOnTheRequest) {
  EXPECT_THAT(adviceFor(kTypesDiffer), HasSubstr("--types IMG_PXE"));
  EXPECT_THAT(adviceFor(kTypesDiffer, true), HasSubstr("the file lacks a type"));
  EXPECT_THAT(adviceFor(kTypesDiffer, false, true), HasSubstr("OEMCustomizeable"));
}

TEST(RefusalAdvice, DoesNotWaitForAFileSystemThatDoesNotAnswer) {
  const test::TempDirectory directory;
  const std::string file = directory.path().generic_string() + "/a.rom";
  const test::HungDirectory hung(directory.path().generic_string());

  EXPECT_EQ(adviseOnRefusal(5, "EUriDoesNotExist:x", {file}),
            "the file system of '" + file + "' does not answer; try again when it does");
}

TEST(RefusalAdvice, LooksAtTheFileFirst) {
  const test::TempDirectory directory;
  const std::string missing = (directory.path() / "missing.rom").string();
  EXPECT_EQ(adviseOnRefusal(5, "EUriDoesNotExist:x", {missing}),
            "there is no file '" + missing + "'; check the path");
  EXPECT_EQ(adviseOnRefusal(5, "EUriDoesNotExist:x", {directory.path().string()}),
            "'" + directory.path().string() + "' is a directory; name the image file in it");
  const std::string file = directory.write("a.rom", std::string("x")).string();
  EXPECT_THAT(adviseOnRefusal(2, "EAdapterNotSupported:x", {file}), HasSubstr("another device"));
}

TEST(RefusalAdvice, LeavesPathsAsTheUserHasThem) {
  const std::string missing = "C:/tmp/adapters/srv/firmware/firmware.rom";
  EXPECT_EQ(adviseOnRefusal(5, "EUriDoesNotExist:x", {missing}),
            "there is no file '" + missing + "'; check the path");
}

TEST(RefusalAdvice, IsSilentAboutWhatItDoesNotKnow) {
  EXPECT_EQ(adviceFor("something new"), "");
  EXPECT_EQ(adviceFor(""), "");
}

TEST(RefusalAdvice, FollowsTheReturnValueOfAHost) {
  cli::UpdateRequest request{"/on/the/host.rom"};
  request.isRemote = true;
  EXPECT_EQ(adviseOnRefusal(5, "", request),
            "check that '/on/the/host.rom' is there on the machine of the host, and a whole "
            "firmware file; its log tells more");
  EXPECT_THAT(adviseOnRefusal(6, "", request), HasSubstr("'quorvel jobs'"));
  EXPECT_THAT(adviseOnRefusal(4099, "", request),
              AllOf(HasSubstr("--types"), HasSubstr("--force")));
  EXPECT_THAT(adviseOnRefusal(4108, "", request), HasSubstr("log of the host"));
  request.program = "quorvel --host x";
  EXPECT_THAT(adviseOnRefusal(6, "", request), AllOf(HasSubstr("'quorvel --host x jobs'"),
                                                     testing::Not(HasSubstr("'quorvel jobs"))));
  request.imagePath.clear();
  EXPECT_THAT(adviseOnRefusal(4097, "", request), HasSubstr("the image is for another device"));
}

TEST(RefusalAdvice, OnAFileForOthersKnowsThatTheLibraryHasSaidMore) {
  cli::UpdateRequest request;
  request.why = "the file is for 8086:10d4";
  EXPECT_EQ(adviseOnRefusal(4097, "EAdapterNotSupported:x", request),
            "get the file that is made for this adapter; 'quorvel show FILE' tells what one is "
            "for");
}

TEST(RefusalAdvice, DoesNotContradictWhatTheLibraryHasSaid) {
  cli::UpdateRequest request;
  request.why =
      "where its driver's own check is enough, name mlx5_core in the setting TrustDriverCheck";
  for (const char* reason : {"EAdapterNotSupported:Image x is not supported for adapter y",
                             "EInvalidParameter:Invalid parameter x"}) {
    EXPECT_EQ(adviseOnRefusal(4097, reason, request),
              "make sure that the file is for this adapter; then name the driver in that setting");
  }
  request.why = "writing firmware needs the capability CAP_NET_ADMIN, as root has it";
  EXPECT_EQ(adviseOnRefusal(4106, "ENotApplicableForTarget:Not applicable for y", request),
            "'quorvel adapters' shows which adapters can be updated, and why others cannot");
}

TEST(RefusalAdvice, NamesTargetsWhenTheTargetIsNone) {
  EXPECT_THAT(adviseOnRefusal(4106, "", {}), HasSubstr("name a port or an adapter"));
}

TEST(RefusalAdvice, OnAnIdentityNamesItsFile) {
  client::Identity identity;
  identity.isFile = true;
  identity.name = test::programBeside("quorvel_cli_test").string();
  identity.types = {"IMG_PXE", "IMG_UEFI"};
  EXPECT_EQ(adviseOnRefusal(4099, kTypesDiffer, cli::requestIdentity(identity, false, here())),
            "update from the file itself and name the types to install: quorvel update TARGET " +
                identity.name + " --types IMG_PXE+IMG_UEFI");
  identity.name += ".gone";
  EXPECT_EQ(adviseOnRefusal(5, "", cli::requestIdentity(identity, false, here())),
            "there is no file '" + identity.name + "'; check the path");
}

class RefusalReportTest : public testing::Test {
 protected:
  std::string report(const std::string& reason, const std::string& logLevel = "",
                     const cli::UpdateRequest& request = {}) {
    std::ostringstream out;
    std::ostringstream err;
    cli::Context context{out, err, {}, {}};
    context.options.logLevel = logLevel;
    client::MethodAnswer answer;
    answer.returnValue = 2;
    answer.returnText = "Unspecified Error";
    answer.reason = reason;
    cli::reportRefusal(context, "update of it", answer, request);
    EXPECT_EQ(out.str(), "");
    return err.str();
  }
};

TEST_F(RefusalReportTest, GivesReasonAndAdvice) {
  EXPECT_EQ(report("EImageReadError:no luck"),
            "quorvel: update of it refused: 2, Unspecified Error\n"
            "  reason: no luck\n"
            "  next: check the file and its permissions\n");
}

TEST_F(RefusalReportTest, SaysWhatTheLibrarySays) {
  cli::UpdateRequest request;
  request.why = "fw.undi 1.0.0 is older than\n1.1.0";
  EXPECT_EQ(report("EImageReadError:no luck", "", request),
            "quorvel: update of it refused: 2, Unspecified Error\n"
            "  reason: no luck\n"
            "  why: fw.undi 1.0.0 is older than\\n1.1.0\n"
            "  next: check the file and its permissions\n");
}

TEST_F(RefusalReportTest, NamesTheSettingForAnImageThatIsTooLarge) {
  EXPECT_EQ(report("EImageReadError:its 8 bytes are more than MaxImageSize allows (7 in x.conf)"),
            "quorvel: update of it refused: 2, Unspecified Error\n"
            "  reason: its 8 bytes are more than MaxImageSize allows (7 in x.conf)\n"
            "  next: get the right file, or raise MaxImageSize in the configuration of the machine "
            "that installs\n");
}

TEST_F(RefusalReportTest, LeavesOutWhatIsNotKnown) {
  EXPECT_EQ(report(""), "quorvel: update of it refused: 2, Unspecified Error\n");
  EXPECT_EQ(report("", "0"),
            "quorvel: update of it refused: 2, Unspecified Error\n"
            "  reason: not known, since --log-level 0 keeps no records\n");
}

TEST_F(RefusalReportTest, TellsWhyAnIdentityIsNoneToInstall) {
  client::Identity identity;
  identity.instanceId = "Orvex:InstalledFirmware:0000:03:00/0";
  identity.types = {"IMG_PXE"};
  const std::string begin = "quorvel: update of it refused: 2, Unspecified Error\n  reason: ";
  const std::string end =
      "\n  next: name another; 'quorvel identities' shows the firmware files that can be "
      "installed\n";
  EXPECT_EQ(report("", "0", cli::requestIdentity(identity, true, here())),
            begin + identity.instanceId +
                " is a component that is installed on an adapter, no firmware file" + end);
  identity.isFile = true;
  identity.name = test::programBeside("quorvel_cli_test").string();
  identity.types.clear();
  EXPECT_EQ(report("", "", cli::requestIdentity(identity, true, here())),
            begin + identity.name + " holds no image of a type that is known" + end);
}

TEST(FailureAdvice, TellsAWaitInVainFromALockThatCannotBeHad) {
  client::JobReport job;
  job.errorText = "Timeout Error";
  EXPECT_THAT(cli::adviseOnFailure(job, here()), HasSubstr("--log-level 3"));
  job.flashHolder = "tool, process 4711, user root, for 00:12";
  EXPECT_THAT(cli::adviseOnFailure(job, here()),
              AllOf(HasSubstr("when that program has ended"), HasSubstr("Timeout")));
  job.flashHolder = "another program; its semaphore is open in host.exe, process 12";
  EXPECT_THAT(cli::adviseOnFailure(job, here()), EndsWith("end them all, and it is free"));
  job.flashHolder += "; perhaps others, which this user is not shown";
  EXPECT_THAT(cli::adviseOnFailure(job, here()),
              AllOf(HasSubstr("it is free unless others"), HasSubstr("a restart of the machine")));
  job.flashHolder.clear();
  job.lockFailure = "cannot lock x: No locks available";
  EXPECT_THAT(cli::adviseOnFailure(job, here()),
              AllOf(HasSubstr("Mend what keeps this user from the flash lock"),
                    testing::Not(HasSubstr("program"))));
}

TEST(FailureAdvice, ShowsTheAdapterWhereTheFlashWasHad) {
  client::JobReport job;
  job.errorText = "Sector stuck";
  EXPECT_THAT(cli::adviseOnFailure(job, here()), HasSubstr("quorvel adapters"));
}

}  // namespace
