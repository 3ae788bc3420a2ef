#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <optional>
#include <string>
#include <vector>

#include "Os/FileAhead.h"
#include "agent/ImageVerification.h"
#include "agent/JobErrors.h"
#include "cim/InstallOptions.h"
#include "tests/agent/FakeMidApi.h"
#include "tests/agent/FakeSystem.h"
#include "tests/agent/FileCuttingSinks.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Throws.h"

namespace {

using test::LogLevel;
using test::ThrowsExactly;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using utils::FirmwareType;

constexpr const char* kAdapter = "0000:03:00.0";
constexpr const char* kOtherAdapter = "0000:04:00.0";
constexpr const char* kSource = "Orvex_ConcreteJob";
constexpr const char* kCheck = "Orvex_ConcreteJob::checkAndVerifyImage";
constexpr const char* kOtherTypes =
    "Quorvel: EDowngradeDetected:The selected flash image cannot be used because it does not "
    "contain the same image types. Please select a flash file with matching image types.";

using Options = std::vector<std::uint16_t>;
using Values = std::vector<std::string>;

class ImageVerification : public testing::Test {
 protected:
  ~ImageVerification() override { agent::clearTargetInProgress(); }

  agent::VerifiedImage check(const Options& options = {cim::kUpdate}, const Values& values = {}) {
    return agent::checkAndVerifyImage(kAdapter, m_uri, options, values);
  }

  // Returns a check for matchers of what it throws.
  auto checking(const Options& options = {cim::kUpdate}, const Values& values = {}) {
    return [this, options, values] { static_cast<void>(check(options, values)); };
  }

  auto checkingUri(const std::string& uri) {
    m_uri = uri;
    return checking();
  }

  static std::string about(const std::string& text, const std::string& uri) {
    return "Quorvel: " + text + uri;
  }

  test::LogCapture m_log;
  test::FakeConfig m_config;
  test::FakeMidApi m_midApi;
  test::TempDirectory m_directory;
  std::filesystem::path m_file = m_directory.write("image.rom", std::string("firmware"));
  std::string m_uri = "file://" + m_file.string();
};

// Notes which target is in progress at each error record.
class TargetWatch final : public utils::LogSinks {
 public:
  TargetWatch() : m_previous(utils::exchangeLogSinks(this)) {}
  ~TargetWatch() override { utils::exchangeLogSinks(m_previous); }

  void writeEventLog(const std::string& /*line*/) noexcept override {
    targets.push_back(agent::getTargetInProgress());
  }
  void writeDebugChannel(const std::string& /*line*/) noexcept override {}
  void writeStandardError(const std::string& /*text*/) noexcept override {}

  std::vector<std::string> targets;

 private:
  utils::LogSinks* m_previous;
};

TEST_F(ImageVerification, FreesItsTargetBeforeItTellsOfARefusal) {
  const auto expectFree = [](const std::function<void()>& act) {
    TargetWatch watch;
    EXPECT_ANY_THROW(act());
    // The last record is the refusal's.
    ASSERT_THAT(watch.targets, testing::Not(IsEmpty()));
    EXPECT_EQ(watch.targets.back(), "");
  };
  for (const ma::PrepareStatus status :
       {ma::PrepareStatus::InvalidImage, ma::PrepareStatus::NotForAdapter,
        ma::PrepareStatus::Downgrade, ma::PrepareStatus::TypesDiffer,
        ma::PrepareStatus::NotUpdatable, ma::PrepareStatus::InternalFault}) {
    m_midApi.prepareStatus = status;
    expectFree(checking());
    m_config.isDowngradeEnabled = true;
    expectFree(checking());
    m_config.isDowngradeEnabled = false;
  }
  expectFree(checking({cim::kTargetTypes}, {"IMG_XXX"}));
  expectFree(checkingUri("nonsense"));
  expectFree(checkingUri("file:///nowhere/at/all"));
}

TEST_F(ImageVerification, HandsTheFileToTheLibraryAndReturnsWhatThatPrepared) {
  m_midApi.prepared = test::bytesOf("smaller");

  const agent::VerifiedImage image =
      check({cim::kUpdate, cim::kTargetTypes}, {"", "IMG_PXE+IMG_UEFI"});

  EXPECT_EQ(image.bytes, test::bytesOf("smaller"));
  EXPECT_THAT(image.targetTypes, ElementsAre(FirmwareType::Pxe, FirmwareType::Uefi));
  EXPECT_THAT(m_midApi.calls(),
              ElementsAre("prepareFlashImage 0000:03:00.0 'firmware' into 8 [3 4]"));
}

// Where nothing is read ahead, on Windows, what is there at the time counts.
TEST_F(ImageVerification, TakesTheFileThatWasReadAhead) {
  os::FileAhead ahead(m_file.string(), 1000);
  const std::string expected = ahead.content().empty() ? "another one" : "firmware";
  m_directory.write("image.rom", std::string("another one"));
  const os::FileAhead::InForce inForce(&ahead);

  static_cast<void>(check());

  EXPECT_THAT(m_midApi.calls(), ElementsAre(HasSubstr("'" + expected + "'")));
}

TEST_F(ImageVerification, LogsItsSteps) {
  static_cast<void>(check());

  EXPECT_THAT(m_log.messages(kCheck), ElementsAre("Checking URI : '" + m_uri + "' ",
                                                  "Start preparing the image", "Image prepared 0"));
  EXPECT_THAT(m_log.records(),
              test::HasRecordOf(kSource, LogLevel::Debug, kCheck, "Start preparing the image"));
}

TEST_F(ImageVerification, LogsWhyAFileIsRefusedWhereTheStatusDoesNotSay) {
  const std::string reason = "fw.undi 1.0.0 is older than 1.1.0, which is stored; 100%";
  const auto told = test::IsRecord(LogLevel::Error, kCheck, reason);
  m_midApi.reason = reason;
  static_cast<void>(check());
  EXPECT_THAT(m_log.records(test::LogSink::EventLog), testing::Not(testing::Contains(told)));

  m_midApi.prepareStatus = ma::PrepareStatus::Downgrade;
  EXPECT_THAT(checking(), testing::Throws<EDowngradeDetected>());
  EXPECT_THAT(m_log.records(test::LogSink::EventLog), testing::Contains(told));

  m_log.clear();
  m_midApi.reason.clear();
  EXPECT_THAT(checking(), testing::Throws<EDowngradeDetected>());
  EXPECT_THAT(m_log.messages(kCheck), testing::Each(testing::Not(testing::StartsWith("fw.undi"))));
  EXPECT_THAT(m_log.messages(kCheck), testing::Not(testing::Contains("")));
}

TEST_F(ImageVerification, KeepsTheTargetInProgressForTheLifeOfItsResult) {
  {
    const agent::VerifiedImage image = check();
    EXPECT_EQ(agent::getTargetInProgress(), kAdapter);
  }
  EXPECT_EQ(agent::getTargetInProgress(), "");
}

TEST_F(ImageVerification, RefusesATargetThatIsBeingUpdated) {
  agent::setTargetInProgress(kAdapter);

  EXPECT_THAT(checking(), ThrowsExactly<ETargetInUse>(
                              "Quorvel: ETargetInUse:Firmware update for 0000:03:00.0 is currently "
                              "in progress"));
  EXPECT_EQ(agent::getTargetInProgress(), kAdapter);
  EXPECT_THAT(m_midApi.calls(), IsEmpty());
}

TEST_F(ImageVerification, RefusesATargetWhileAnotherIsBeingUpdated) {
  agent::setTargetInProgress(kOtherAdapter);

  EXPECT_THAT(checking(), ThrowsExactly<EJobIsRunning>(
                              "Quorvel: EJobIsRunning:Other job for 0000:04:00.0 is running at "
                              "this moment"));
  EXPECT_EQ(agent::getTargetInProgress(), kOtherAdapter);
}

TEST_F(ImageVerification, RefusesUrisThatItCannotRead) {
  for (const char* uri : {"", "image.rom", "http://host/image.rom", "gopher://x", "file:/x"}) {
    EXPECT_THAT(checkingUri(uri), ThrowsExactly<EInvalidUri>(std::string("Quorvel: EInvalidUri:") +
                                                             "URI: " + uri + " is invalid"));
    EXPECT_EQ(agent::getTargetInProgress(), "") << uri;
  }
}

TEST_F(ImageVerification, RefusesAUriThatNamesNoFile) {
  const std::string missing = "file://" + (m_directory.path() / "missing").string();
  const std::string directory = "file://" + m_directory.path().string();
  for (const std::string& uri : {missing, directory}) {
    EXPECT_THAT(checkingUri(uri), ThrowsExactly<EUriDoesNotExist>(
                                      "Quorvel: EUriDoesNotExist:URI: " + uri + " is invalid"));
    EXPECT_EQ(agent::getTargetInProgress(), "") << uri;
  }
}

TEST_F(ImageVerification, RefusesAFileThatIsCutWhileItIsRead) {
  const test::FileCuttingSinks sinks(m_file);

  EXPECT_THAT(checking(),
              ThrowsExactly<EImageReadError>("Quorvel: EImageReadError:Image read error: " + m_uri +
                                             " (" + m_file.string() + ")"));
  EXPECT_EQ(agent::getTargetInProgress(), "");
  EXPECT_THAT(m_midApi.calls(), IsEmpty());
}

TEST_F(ImageVerification, LooksAtTheFileBeforeTheNamesOfItsTypes) {
  const Options options{cim::kUpdate, cim::kTargetTypes};
  const Values values{"", "IMG_XXX"};
  {
    const test::FileCuttingSinks sinks(m_file);
    EXPECT_THROW(checking(options, values)(), EImageReadError);
  }
  m_uri += ".missing";
  EXPECT_THROW(checking(options, values)(), EUriDoesNotExist);
  EXPECT_THAT(m_log.messages("Orvex_ConcreteJob::getTargetTypes"), IsEmpty());
}

TEST_F(ImageVerification, RefusesAFileThatIsLargerThanTheSetting) {
  m_config.maxImageSize = 7;

  EXPECT_THAT(checking(),
              ThrowsExactly<EImageReadError>("Quorvel: EImageReadError:Image read error: " + m_uri +
                                             " (" + m_file.string() +
                                             "): its 8 bytes are more than MaxImageSize allows (7 "
                                             "in " +
                                             utils::QuorvelConfig::placeOf("") + ")"));
  EXPECT_EQ(agent::getTargetInProgress(), "");
  EXPECT_THAT(m_log.messages("os::readFile"), IsEmpty());
  EXPECT_THAT(m_midApi.calls(), IsEmpty());

  m_config.maxImageSize = 8;
  EXPECT_EQ(check().bytes, test::bytesOf("firmware"));
}

TEST_F(ImageVerification, RefusesWhatTheLibraryRefuses) {
  const auto refusing = [this](ma::PrepareStatus status) {
    m_midApi.prepareStatus = status;
    return checking();
  };
  EXPECT_THAT(refusing(ma::PrepareStatus::InvalidImage),
              ThrowsExactly<utils::EInvalidParameter>(
                  about("EInvalidParameter:Invalid parameter detected for ", m_uri)));
  EXPECT_THAT(
      refusing(ma::PrepareStatus::NotForAdapter),
      ThrowsExactly<EAdapterNotSupported>(about(
          "EAdapterNotSupported:Image ", m_uri + " is not supported for adapter 0000:03:00.0")));
  EXPECT_THAT(refusing(ma::PrepareStatus::NotUpdatable),
              ThrowsExactly<ENotApplicableForTarget>(
                  about("ENotApplicableForTarget:Not applicable for ", m_uri)));
  EXPECT_THAT(refusing(ma::PrepareStatus::InternalFault),
              ThrowsExactly<utils::EUnspecifiedError>(
                  about("EUnspecifiedError:Unspecified error occurred for ", m_uri)));
  EXPECT_EQ(agent::getTargetInProgress(), "");
}

TEST_F(ImageVerification, RefusalsOfTheLibraryStandWithForceAndConsent) {
  m_config.isDowngradeEnabled = true;
  for (const ma::PrepareStatus status :
       {ma::PrepareStatus::InvalidImage, ma::PrepareStatus::NotForAdapter,
        ma::PrepareStatus::NotUpdatable, ma::PrepareStatus::InternalFault}) {
    m_midApi.prepareStatus = status;
    EXPECT_THROW(checking({cim::kUpdate, cim::kForceInstallation})(), utils::Exception)
        << static_cast<int>(status);
  }
}

TEST_F(ImageVerification, AcceptsAStatusThatItDoesNotKnow) {
  for (const int status : {0, 7, -1}) {
    m_midApi.prepareStatus = static_cast<ma::PrepareStatus>(status);
    EXPECT_EQ(check().bytes, test::bytesOf("firmware"));
    EXPECT_THAT(m_log.messages(kCheck),
                testing::Contains("Image prepared " + std::to_string(status)));
  }
}

std::string downgradeOf(const std::string& uri) {
  return "Quorvel: EDowngradeDetected:Downgrade was detected for " + uri +
         ". Try to use FORCE_INSTALL option.";
}

TEST_F(ImageVerification, RefusesADowngradeUnlessForced) {
  m_midApi.prepareStatus = ma::PrepareStatus::Downgrade;
  m_config.isDowngradeEnabled = true;

  EXPECT_THAT(checking(), ThrowsExactly<EDowngradeDetected>(downgradeOf(m_uri)));
  EXPECT_EQ(agent::getTargetInProgress(), "");
}

TEST_F(ImageVerification, AcceptsAForcedDowngradeWithoutTheConfigurationsConsent) {
  m_midApi.prepareStatus = ma::PrepareStatus::Downgrade;

  EXPECT_EQ(check({cim::kUpdate, cim::kForceInstallation}).bytes, test::bytesOf("firmware"));
}

TEST_F(ImageVerification, RefusesOtherTypesWithoutTheConfigurationsConsent) {
  m_midApi.prepareStatus = ma::PrepareStatus::TypesDiffer;

  EXPECT_THAT(checking(), ThrowsExactly<EDowngradeDetected>(kOtherTypes));
  EXPECT_THAT(checking({cim::kForceInstallation, cim::kUpdate}),
              ThrowsExactly<EDowngradeDetected>(kOtherTypes));
  EXPECT_EQ(agent::getTargetInProgress(), "");
  EXPECT_THAT(m_log.messages(kCheck),
              AllOf(testing::Contains("DowngradeEnable: 0, ForceInstall: 0"),
                    testing::Contains("DowngradeEnable: 0, ForceInstall: 1")));
}

TEST_F(ImageVerification, RefusesOtherTypesThatAreNotForced) {
  m_midApi.prepareStatus = ma::PrepareStatus::TypesDiffer;
  m_config.isDowngradeEnabled = true;

  EXPECT_THAT(checking(), ThrowsExactly<EDowngradeDetected>(downgradeOf(m_uri)));
  EXPECT_THAT(m_log.messages(kCheck), testing::Contains("DowngradeEnable: 1, ForceInstall: 0"));
}

TEST_F(ImageVerification, AcceptsOtherTypesWithForceAndConsent) {
  m_midApi.prepareStatus = ma::PrepareStatus::TypesDiffer;
  m_config.isDowngradeEnabled = true;

  EXPECT_EQ(check({cim::kUpdate, cim::kForceInstallation}).bytes, test::bytesOf("firmware"));
  EXPECT_THAT(m_log.messages(kCheck), testing::Contains("DowngradeEnable: 1, ForceInstall: 1"));
}

TEST_F(ImageVerification, ClearsTheTargetWhenATypeIsUnknown) {
  EXPECT_THAT(checking({cim::kTargetTypes}, {"IMG_OTHER"}),
              ThrowsExactly<utils::EInvalidParameter>(HasSubstr("IMG_OTHER is not recognized")));
  EXPECT_EQ(agent::getTargetInProgress(), "");
}

class GetTargetTypes : public testing::Test {
 protected:
  // The records of the call.
  std::vector<std::string> messages() const {
    return m_log.messages("Orvex_ConcreteJob::getTargetTypes");
  }

  test::LogCapture m_log;
};

TEST_F(GetTargetTypes, KeepsTheOrderOfTheNames) {
  EXPECT_THAT(agent::getTargetTypes({cim::kTargetTypes}, {"IMG_PXE+IMG_iSCSI"}),
              ElementsAre(FirmwareType::Pxe, FirmwareType::Iscsi));
}

TEST_F(GetTargetTypes, KnowsEveryName) {
  EXPECT_THAT(
      agent::getTargetTypes({cim::kTargetTypes}, {"IMG_FCoE+IMG_UEFI+IMG_PXE+IMG_iSCSI+IMG_CLP"}),
      ElementsAre(FirmwareType::Fcoe, FirmwareType::Uefi, FirmwareType::Pxe, FirmwareType::Iscsi,
                  FirmwareType::Clp));
}

TEST_F(GetTargetTypes, KeepsRepetitions) {
  EXPECT_THAT(agent::getTargetTypes({cim::kTargetTypes}, {"IMG_PXE+IMG_PXE"}),
              ElementsAre(FirmwareType::Pxe, FirmwareType::Pxe));
}

TEST_F(GetTargetTypes, TrimsBlanksAndTabs) {
  EXPECT_THAT(agent::getTargetTypes({cim::kTargetTypes}, {" \tIMG_PXE\t + IMG_CLP "}),
              ElementsAre(FirmwareType::Pxe, FirmwareType::Clp));
}

TEST_F(GetTargetTypes, TakesAnEmptyNameForTypeZero) {
  EXPECT_THAT(agent::getTargetTypes({cim::kTargetTypes}, {"+IMG_PXE"}),
              ElementsAre(FirmwareType::None, FirmwareType::Pxe));
  EXPECT_THAT(agent::getTargetTypes({cim::kTargetTypes}, {"IMG_PXE+ "}),
              ElementsAre(FirmwareType::Pxe, FirmwareType::None));
  EXPECT_THAT(agent::getTargetTypes({cim::kTargetTypes}, {"+"}),
              ElementsAre(FirmwareType::None, FirmwareType::None));
}

TEST_F(GetTargetTypes, QuotesNothing) {
  const auto quoted = [] {
    static_cast<void>(agent::getTargetTypes({cim::kTargetTypes}, {"\"IMG_PXE+IMG_CLP\""}));
  };
  EXPECT_THAT(quoted, ThrowsExactly<utils::EInvalidParameter>(HasSubstr(". \"IMG_PXE is not")));
}

TEST_F(GetTargetTypes, RefusesANameInOtherCase) {
  const auto call = [] {
    static_cast<void>(agent::getTargetTypes({cim::kTargetTypes}, {"img_pxe"}));
  };

  EXPECT_THAT(call, ThrowsExactly<utils::EInvalidParameter>(
                        "Quorvel: EInvalidParameter:Invalid parameter detected for TargetTypes. "
                        "img_pxe is not recognized"));
}

TEST_F(GetTargetTypes, GoesThroughEveryPositionOfTheOption) {
  EXPECT_THAT(agent::getTargetTypes({cim::kTargetTypes, cim::kUpdate, cim::kTargetTypes},
                                    {"IMG_UEFI", "x", "IMG_CLP"}),
              ElementsAre(FirmwareType::Uefi, FirmwareType::Clp));
}

TEST_F(GetTargetTypes, DropsWhatItFoundWhenALaterPositionHasNoValue) {
  EXPECT_THAT(agent::getTargetTypes({cim::kTargetTypes, cim::kTargetTypes}, {"IMG_UEFI"}),
              IsEmpty());
  EXPECT_THAT(messages(), testing::Contains("No TargetTypes detected in values"));
}

TEST_F(GetTargetTypes, LogsThatThereIsNoOption) {
  EXPECT_THAT(agent::getTargetTypes({cim::kUpdate}, {"IMG_PXE"}), IsEmpty());

  EXPECT_THAT(messages(), ElementsAre("InstallOptions Size: 1", "InstallOptionsValues Size: 1",
                                      "No TargetTypes defined"));
}

TEST_F(GetTargetTypes, LogsThatThereIsNoValue) {
  EXPECT_THAT(agent::getTargetTypes({cim::kUpdate, cim::kTargetTypes}, {"IMG_PXE"}), IsEmpty());

  EXPECT_THAT(messages(), ElementsAre("InstallOptions Size: 2", "InstallOptionsValues Size: 1",
                                      "InstallOptions contains TargetTypes on 1 position",
                                      "No TargetTypes detected in values"));
}

TEST_F(GetTargetTypes, LogsThatAValueIsEmpty) {
  EXPECT_THAT(agent::getTargetTypes({cim::kTargetTypes, cim::kTargetTypes}, {"", "IMG_PXE"}),
              IsEmpty());

  EXPECT_THAT(messages(), ElementsAre("InstallOptions Size: 2", "InstallOptionsValues Size: 2",
                                      "InstallOptions contains TargetTypes on 0 position",
                                      "InstallOptionsValues contains 2 elements",
                                      "Values does not contain any TargetTypes"));
}

TEST_F(GetTargetTypes, LogsHowEachNameIsFound) {
  static_cast<void>(agent::getTargetTypes({cim::kTargetTypes}, {" IMG_iSCSI"}));

  EXPECT_THAT(m_log.records(),
              testing::Each(test::IsRecordOf(kSource, LogLevel::Debug,
                                             "Orvex_ConcreteJob::getTargetTypes", testing::_)));
  EXPECT_THAT(
      messages(),
      ElementsAre("InstallOptions Size: 1", "InstallOptionsValues Size: 1",
                  "InstallOptions contains TargetTypes on 0 position",
                  "InstallOptionsValues contains 1 elements", "TeargetType: IMG_iSCSI", "index: 0",
                  "compare with ", "index: 1", "compare with IMG_CLP", "index: 2",
                  "compare with IMG_iSCSI", "added new image type - #2", "Return result[0]=2"));
}

}  // namespace
