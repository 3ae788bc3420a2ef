#include <atomic>
#include <filesystem>
#include <gmock/gmock.h>
#include <map>
#include <thread>

#include "Os/QuorvelConfig.h"
#include "tests/Os/NoMemoryAfter.h"
#include "tests/Os/Platform.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Settings.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/VirtualSlots.h"

namespace {

using test::HasRecordOf;
using test::IsRecordOf;
using test::LogCapture;
using test::LogLevel;
using testing::AnyOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kFunction = "utils::QuorvelConfig::initialize";

// A configuration over settings that the test writes.
class QuorvelConfig : public testing::Test {
 protected:
  using Values = std::map<std::string, test::Settings::Value>;

  void write(const Values& values) { m_settings.write(values); }
  std::string folder(const std::string& name) {
    std::filesystem::create_directory(m_directory.path() / name);
    return (m_directory.path() / name).string();
  }

  test::TempDirectory m_directory;
  test::Settings m_settings;
  utils::QuorvelConfig m_config{m_settings.path()};
};

TEST_F(QuorvelConfig, HasItsDefaultsWithoutSettings) {
  EXPECT_EQ(m_config.getNamespace(), "root/DCIM/zolan");
  EXPECT_EQ(m_config.getTimeout(), 300'000U);
  EXPECT_FALSE(m_config.getDowngradeEnable());
  EXPECT_THAT(m_config.getFWFilePaths(), IsEmpty());
}

TEST_F(QuorvelConfig, HasItsDefaultsWhenTheFileIsADirectory) {
  utils::QuorvelConfig config(m_directory.path().string());

  EXPECT_EQ(config.getNamespace(), "root/DCIM/zolan");
  EXPECT_EQ(config.getTimeout(), 300'000U);
}

TEST_F(QuorvelConfig, LogsEachSettingThatItCannotRead) {
  const LogCapture log;
  m_config.initialize();

  EXPECT_THAT(log.messages(kFunction),
              ElementsAre("Trying to read register ...", "Getting TimeOut from register - failed",
                          "Getting Namespace from register - failed",
                          "Getting LogLevel from register - failed",
                          "Getting Firmware File Paths from register - failed"));
  EXPECT_THAT(log.records(), HasRecordOf(test::kConfigSource, LogLevel::Debug, kFunction,
                                         "Getting TimeOut from register - failed"));
}

TEST_F(QuorvelConfig, ReadsItsSettingsInEveryGetter) {
  const LogCapture log;
  static_cast<void>(m_config.getNamespace());
  static_cast<void>(m_config.getTimeout());
  static_cast<void>(m_config.getDowngradeEnable());
  static_cast<void>(m_config.getFWFilePaths());

  const auto messages = log.messages(kFunction);
  EXPECT_EQ(std::count(messages.begin(), messages.end(), "Trying to read register ..."), 4);
}

TEST_F(QuorvelConfig, TakesEverySetting) {
  const std::string directory = folder("fw");
  write({{"Timeout", 250U},
         {"Namespace", "root/cimv2"},
         {"OEMCustomizeable", 0x20U},
         {"FWFilePath", directory}});
  const LogCapture log;

  EXPECT_EQ(m_config.getTimeout(), 250U);
  EXPECT_EQ(m_config.getNamespace(), "root/cimv2");
  EXPECT_TRUE(m_config.getDowngradeEnable());
  EXPECT_THAT(m_config.getFWFilePaths(), ElementsAre(directory));
  EXPECT_THAT(log.messages(kFunction), Not(Contains(testing::EndsWith("failed"))));
}

TEST_F(QuorvelConfig, IgnoresATimeoutOfZero) {
  write({{"Timeout", 0U}});
  const LogCapture log;

  EXPECT_EQ(m_config.getTimeout(), 300'000U);
  EXPECT_THAT(log.messages(kFunction), Not(Contains("Getting TimeOut from register - failed")));
}

TEST_F(QuorvelConfig, IgnoresATimeoutThatIsNoNumber) {
  write({{"Timeout", "soon"}});
  const LogCapture log;

  EXPECT_EQ(m_config.getTimeout(), 300'000U);
  EXPECT_THAT(log.records(), HasRecordOf(test::kConfigSource, LogLevel::Debug, kFunction,
                                         "Getting TimeOut from register - failed"));
}

TEST_F(QuorvelConfig, TakesANamespaceThatBeginsWithRootOnly) {
  for (const char* refused : {"interop", "Root/cimv2", "xroot", "roo", ""}) {
    write({{"Namespace", refused}});
    EXPECT_EQ(m_config.getNamespace(), "root/DCIM/zolan") << refused;
  }
  for (const char* taken : {"root/cimv2", "root", "rootless"}) {
    write({{"Namespace", taken}});
    EXPECT_EQ(m_config.getNamespace(), taken);
  }
}

TEST_F(QuorvelConfig, DoesNotLogANamespaceThatItRefuses) {
  write({{"Namespace", "interop"}});
  const LogCapture log;
  m_config.initialize();

  EXPECT_THAT(log.messages(kFunction), Not(Contains("Getting Namespace from register - failed")));
}

TEST_F(QuorvelConfig, TakesTheDowngradeBitOfTheCustomisationWord) {
  struct Row {
    std::uint32_t value;
    bool isEnabled;
  };
  for (const Row& row : {Row{0x20, true}, Row{0x1F, false}, Row{0xFF, true}, Row{0xFFFFFFDF, false},
                         Row{0, false}, Row{0x40, false}}) {
    write({{"OEMCustomizeable", row.value}});
    EXPECT_EQ(m_config.getDowngradeEnable(), row.isEnabled) << row.value;
  }
}

TEST_F(QuorvelConfig, KeepsUsableFirmwareFoldersOnly) {
  const std::string directory = folder("fw");
  const std::string missing = (m_directory.path() / "missing").string();
  const std::string paths = directory + "\\;x;" + missing;
  write({{"FWFilePath", paths}});
  const LogCapture log;

  EXPECT_THAT(m_config.getFWFilePaths(), ElementsAre(directory));
  EXPECT_THAT(log.messages(kFunction),
              ElementsAre("Trying to read register ...", "Getting TimeOut from register - failed",
                          "Getting Namespace from register - failed",
                          "Getting LogLevel from register - failed",
                          "Getting Firmware File Paths from: " + paths,
                          "Candidate path : " + directory + "\\", "Removing last backslash",
                          "Read next FWFilePath : " + directory, "Candidate path : x",
                          "Path x is too short", "Candidate path : " + missing));
}

TEST_F(QuorvelConfig, AsksForFirmwareFoldersWithoutTakingThemOver) {
  const std::string directory = folder("fw");
  write({{"FWFilePath", directory + "\\;x;;" + directory + "-missing"}});
  const LogCapture log;

  m_config.askFirmwarePaths();
  EXPECT_THAT(
      log.messages("os::isThisADir"),
      ElementsAre("Checking if the declared path " + directory + " points to a directory",
                  "It is a directory",
                  "Checking if the declared path " + directory + "-missing points to a directory"));
  EXPECT_THAT(log.messages(kFunction), IsEmpty());
}

TEST_F(QuorvelConfig, KeepsFirmwareFoldersInTheirOrder) {
  const std::string second = folder("b");
  const std::string first = folder("a");
  const std::string file = m_directory.write("file", std::string("x")).string();
  write({{"FWFilePath", second + ";;" + file + ";" + first + ";"}});

  EXPECT_THAT(m_config.getFWFilePaths(), ElementsAre(second, first));
}

TEST_F(QuorvelConfig, CountsAFirmwareFolderOfTwoCharactersAsLongEnough) {
  write({{"FWFilePath", "..;/"}});

  EXPECT_THAT(m_config.getFWFilePaths(), ElementsAre(".."));
}

TEST_F(QuorvelConfig, TakesOneBackslashOffOnly) {
  const std::string directory = folder("fw");
  write({{"FWFilePath", directory + "\\\\"}});

  EXPECT_THAT(m_config.getFWFilePaths(), IsEmpty());
}

TEST_F(QuorvelConfig, FollowsItsSettings) {
  write({{"Timeout", 250U}, {"OEMCustomizeable", 0x20U}, {"FWFilePath", ".."}});
  EXPECT_EQ(m_config.getTimeout(), 250U);
  write({{"Timeout", 500U}, {"OEMCustomizeable", 0U}, {"FWFilePath", "..;.."}});
  EXPECT_EQ(m_config.getTimeout(), 500U);
  EXPECT_FALSE(m_config.getDowngradeEnable());
  EXPECT_THAT(m_config.getFWFilePaths(), ElementsAre("..", ".."));
}

TEST_F(QuorvelConfig, KeepsWhatItReadWhenASettingGoesAway) {
  write({{"Timeout", 250U},
         {"Namespace", "root/x"},
         {"OEMCustomizeable", 0x20U},
         {"FWFilePath", ".."}});
  m_config.initialize();
  m_settings.remove();

  EXPECT_EQ(m_config.getTimeout(), 250U);
  EXPECT_EQ(m_config.getNamespace(), "root/x");
  EXPECT_TRUE(m_config.getDowngradeEnable());
  EXPECT_THAT(m_config.getFWFilePaths(), IsEmpty());
}

TEST_F(QuorvelConfig, TakesTheSizeOfTheLargestImage) {
  EXPECT_EQ(m_config.getMaxImageSize(), 64U << 20);
  for (const std::uint32_t size : {1U, 4096U, 0x7FFFFFFFU}) {
    write({{"MaxImageSize", size}});
    EXPECT_EQ(m_config.getMaxImageSize(), size);
  }
  write({});
  EXPECT_EQ(m_config.getMaxImageSize(), 64U << 20);
}

TEST_F(QuorvelConfig, ReportsASizeOfTheLargestImageThatNoFileHasOnce) {
  for (const std::uint32_t size : {0U, 0x80000000U}) {
    write({{"MaxImageSize", size}});
    const LogCapture log;

    EXPECT_EQ(m_config.getMaxImageSize(), 64U << 20);
    EXPECT_EQ(m_config.getMaxImageSize(), 64U << 20);
    EXPECT_THAT(log.messages("utils::QuorvelConfig::getMaxImageSize"),
                ElementsAre(testing::EndsWith("MaxImageSize is ignored: " + std::to_string(size) +
                                              " is no number from 1 to 2147483647")));
  }
}

TEST_F(QuorvelConfig, TakesTheSettingsOfTheFlashLibrary) {
  EXPECT_EQ(m_config.getFlashSettings(), utils::FlashSettings());
  write({{"Adapters", " kernel "},
         {"TrustDriverCheck", "mlx5_core  bnxt_en"},
         {"FirmwareFolder", "/srv/firmware"}});
  utils::FlashSettings expected;
  expected.hasVirtualAdapters = false;
  expected.trustedDrivers = {"mlx5_core", "bnxt_en"};
  expected.firmwareFolder = "/srv/firmware";
  EXPECT_EQ(m_config.getFlashSettings(), expected);
  EXPECT_EQ(utils::QuorvelConfig::currentFlashSettings(), expected);

  write({{"Adapters", "virtual"}});
  EXPECT_FALSE(m_config.getFlashSettings().hasKernelAdapters);
  EXPECT_TRUE(m_config.getFlashSettings().hasVirtualAdapters);
  write({{"Adapters", "virtual kernel"}});
  EXPECT_EQ(m_config.getFlashSettings(), utils::FlashSettings());
}

TEST_F(QuorvelConfig, ReportsSettingsOfTheFlashLibraryThatItCannotUseOnce) {
  LogCapture log;
  const auto problems = [&](const char* name, const char* value) {
    log.clear();
    write({{name, value}});
    for (int i = 0; i < 2; ++i) {
      EXPECT_EQ(m_config.getFlashSettings(), utils::FlashSettings());
    }
    return log.messages("utils::QuorvelConfig::getFlashSettings");
  };

  EXPECT_THAT(
      problems("Adapters", "kernel real"),
      ElementsAre(testing::EndsWith("Adapters is ignored: 'real' is neither kernel nor virtual")));
  EXPECT_THAT(
      problems("Adapters", " "),
      ElementsAre(testing::EndsWith("Adapters is ignored: it names neither kernel nor virtual")));
  EXPECT_THAT(problems("FirmwareFolder", "lib/firmware"),
              ElementsAre(testing::EndsWith(
                  "FirmwareFolder is ignored: 'lib/firmware' does not begin with /")));
}

TEST_F(QuorvelConfig, ReportsWordsThatNameNoDriverOnce) {
  const LogCapture log;
  write({{"TrustDriverCheck", "bnxt_en, mlx5_core drivers/net \x1b[2J"}});
  for (int i = 0; i < 2; ++i) {
    EXPECT_THAT(m_config.getFlashSettings().trustedDrivers, ElementsAre("mlx5_core"));
  }
  EXPECT_THAT(log.messages("utils::QuorvelConfig::getFlashSettings"),
              ElementsAre(testing::HasSubstr(
                  "of TrustDriverCheck is ignored: 'bnxt_en,', 'drivers/net', ")));
}

TEST_F(QuorvelConfig, SaysHowMuchTooLargeAnImageIs) {
  write({{"MaxImageSize", 4096U}});

  EXPECT_EQ(m_config.findSizeExcess(4096), "");
  EXPECT_EQ(m_config.findSizeExcess(4097),
            "its 4097 bytes are more than MaxImageSize allows (4096 in " +
                utils::QuorvelConfig::placeOf(m_settings.path()) + ")");
}

TEST_F(QuorvelConfig, KeepsWhatItHadAndSaysSoWhenReadingFails) {
#ifdef QUORVEL_TEST_THREAD_SANITIZER
  GTEST_SKIP() << "ThreadSanitizer lets no program have an operator new of its own";
#endif
  write(
      {{"Timeout", 250U}, {"Namespace", "root/of/the/first/reading"}, {"OEMCustomizeable", 0x20U}});
  m_config.initialize();
  write({{"Namespace", "root/of/the/second/reading"}, {"OEMCustomizeable", 0U}});
  const LogCapture log;
  {
    const test::NoMemoryAfter noMemory("Getting TimeOut from register - failed");
    m_config.initialize();
  }

  EXPECT_THAT(log.messages(kFunction),
              ElementsAre("Trying to read register ...", "Getting TimeOut from register - failed",
                          "Reading config values from register - failed"));
  write({});
  EXPECT_EQ(m_config.getNamespace(), "root/of/the/first/reading");
  EXPECT_EQ(m_config.getTimeout(), 250U);
  EXPECT_TRUE(m_config.getDowngradeEnable());
}

TEST_F(QuorvelConfig, TakesAReadingWhole) {
#ifdef QUORVEL_TEST_THREAD_SANITIZER
  GTEST_SKIP() << "ThreadSanitizer lets no program have an operator new of its own";
#endif
  write({{"Timeout", 250U}, {"Namespace", "root/of/the/only/reading"}});
  const LogCapture log;
  {
    const test::NoMemoryAfter noMemory("Getting Firmware File Paths from register - failed");
    m_config.initialize();
  }
  const bool isTaken =
      log.messages(kFunction).back() != "Reading config values from register - failed";
  write({});

  EXPECT_EQ(m_config.getTimeout(), isTaken ? 250U : 300'000U);
  EXPECT_EQ(m_config.getNamespace(), isTaken ? "root/of/the/only/reading" : "root/DCIM/zolan");
}

TEST_F(QuorvelConfig, IsTheCurrentOneOnceConstructed) {
  write({{"Timeout", 250U}});

  EXPECT_EQ(utils::QuorvelConfig::getInstance(), &m_config);
  EXPECT_EQ(utils::QuorvelConfig::getInstance()->getTimeout(), 250U);
}

TEST(QuorvelConfigOperations, KeepTheOrderOfTheVirtualOnes) {
  EXPECT_EQ(test::slotOf(&utils::QuorvelConfig::getNamespace), 2U);
  EXPECT_EQ(test::slotOf(&utils::QuorvelConfig::getTimeout), 3U);
  EXPECT_EQ(test::slotOf(&utils::QuorvelConfig::getDowngradeEnable), 4U);
  EXPECT_EQ(test::slotOf(&utils::QuorvelConfig::getFWFilePaths), 5U);
  EXPECT_EQ(test::slotOf(&utils::QuorvelConfig::initialize), 6U);
}

TEST(QuorvelConfigSingleton, IsMadeOnFirstUse) {
  const LogCapture log;
  utils::QuorvelConfig* config = utils::QuorvelConfig::getInstance();

  ASSERT_NE(config, nullptr);
  EXPECT_EQ(utils::QuorvelConfig::getInstance(), config);
  EXPECT_STREQ(utils::QuorvelConfig::kDefaultPath, "/etc/OrvexQuorvelProvider.conf");
  EXPECT_THAT(
      log.records(),
      AnyOf(IsEmpty(),  // where a test before this one was the first user
            ElementsAre(IsRecordOf("Utils/Singleton", LogLevel::Debug,
                                   "utils::Singleton<class utils::QuorvelConfig>::Singleton",
                                   "New singleton instance for QuorvelConfig"))));
}

TEST_F(QuorvelConfig, IsReadByManyThreadsWhileItsSettingsChange) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 50;
  write({{"Timeout", 1U}, {"FWFilePath", ".."}});
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      for (int round = 0; round < kRounds; ++round) {
        const std::uint32_t timeout = m_config.getTimeout();
        wrong += timeout != 1 && timeout != 2 ? 1 : 0;
        wrong += m_config.getFWFilePaths().size() != 1 ? 1 : 0;
      }
    });
  }
  for (int round = 0; round < kRounds; ++round) {
    write({{"Timeout", round % 2 == 0 ? 2U : 1U}, {"FWFilePath", ".."}});
  }
  for (std::thread& thread : threads) {
    thread.join();
  }

  EXPECT_EQ(wrong.load(), 0);
}

}  // namespace
