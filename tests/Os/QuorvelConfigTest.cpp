#include <atomic>
#include <filesystem>
#include <gmock/gmock.h>
#include <memory>
#include <thread>

#include "Os/QuorvelConfig.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDirectory.h"

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

constexpr const char* kSource = "Os/QuorvelConfig";
constexpr const char* kFunction = "utils::QuorvelConfig::initialize";

// A configuration over a file that the test writes.
class QuorvelConfig : public testing::Test {
 protected:
  void write(const std::string& content) {
    // In one step, since others may read meanwhile.
    std::filesystem::rename(m_directory.write("new.conf", content), m_path);
  }
  std::string folder(const std::string& name) {
    std::filesystem::create_directory(m_directory.path() / name);
    return (m_directory.path() / name).string();
  }

  test::TempDirectory m_directory;
  const std::string m_path = m_directory.path() / "agent.conf";
  utils::QuorvelConfig m_config{m_path};
};

TEST_F(QuorvelConfig, HasItsDefaultsWithoutAFile) {
  EXPECT_EQ(m_config.getNamespace(), "root/DCIM/zolan");
  EXPECT_EQ(m_config.getTimeout(), 300'000U);
  EXPECT_FALSE(m_config.getDowngradeEnable());
  EXPECT_THAT(m_config.getFWFilePaths(), IsEmpty());
}

TEST_F(QuorvelConfig, HasItsDefaultsWhenTheFileIsADirectory) {
  utils::QuorvelConfig config(m_directory.path());

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
  EXPECT_THAT(log.records(),
              testing::Each(IsRecordOf(kSource, LogLevel::Debug, kFunction, testing::_)));
}

TEST_F(QuorvelConfig, ReadsItsFileInEveryGetter) {
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
  write("Timeout = 250\nNamespace = root/cimv2\nOEMCustomizeable = 0x20\nFWFilePath = " +
        directory + "\n");
  const LogCapture log;

  EXPECT_EQ(m_config.getTimeout(), 250U);
  EXPECT_EQ(m_config.getNamespace(), "root/cimv2");
  EXPECT_TRUE(m_config.getDowngradeEnable());
  EXPECT_THAT(m_config.getFWFilePaths(), ElementsAre(directory));
  EXPECT_THAT(log.messages(kFunction), Not(Contains(testing::EndsWith("failed"))));
}

TEST_F(QuorvelConfig, IgnoresATimeoutOfZero) {
  write("Timeout = 0\n");
  const LogCapture log;

  EXPECT_EQ(m_config.getTimeout(), 300'000U);
  EXPECT_THAT(log.messages(kFunction), Not(Contains("Getting TimeOut from register - failed")));
}

TEST_F(QuorvelConfig, IgnoresATimeoutThatIsNoNumber) {
  write("Timeout = soon\n");
  const LogCapture log;

  EXPECT_EQ(m_config.getTimeout(), 300'000U);
  EXPECT_THAT(log.records(), HasRecordOf(kSource, LogLevel::Debug, kFunction,
                                         "Getting TimeOut from register - failed"));
}

TEST_F(QuorvelConfig, TakesANamespaceThatBeginsWithRootOnly) {
  for (const char* refused : {"interop", "Root/cimv2", "xroot", "roo", ""}) {
    write(std::string("Namespace = ") + refused + "\n");
    EXPECT_EQ(m_config.getNamespace(), "root/DCIM/zolan") << refused;
  }
  for (const char* taken : {"root/cimv2", "root", "rootless"}) {
    write(std::string("Namespace = ") + taken + "\n");
    EXPECT_EQ(m_config.getNamespace(), taken);
  }
}

TEST_F(QuorvelConfig, DoesNotLogANamespaceThatItRefuses) {
  write("Namespace = interop\n");
  const LogCapture log;
  m_config.initialize();

  EXPECT_THAT(log.messages(kFunction), Not(Contains("Getting Namespace from register - failed")));
}

TEST_F(QuorvelConfig, TakesTheDowngradeBitOfTheCustomisationWord) {
  struct Row {
    const char* value;
    bool isEnabled;
  };
  for (const Row& row : {Row{"0x20", true}, Row{"0x1F", false}, Row{"32", true}, Row{"0xFF", true},
                         Row{"0xFFFFFFDF", false}, Row{"0", false}, Row{"0x40", false}}) {
    write(std::string("OEMCustomizeable = ") + row.value + "\n");
    EXPECT_EQ(m_config.getDowngradeEnable(), row.isEnabled) << row.value;
  }
}

TEST_F(QuorvelConfig, KeepsUsableFirmwareFoldersOnly) {
  const std::string directory = folder("fw");
  const std::string missing = m_directory.path() / "missing";
  write("FWFilePath = " + directory + "\\;x;" + missing + "\n");
  const LogCapture log;

  EXPECT_THAT(m_config.getFWFilePaths(), ElementsAre(directory));
  EXPECT_THAT(log.messages(kFunction),
              ElementsAre("Trying to read register ...", "Getting TimeOut from register - failed",
                          "Getting Namespace from register - failed",
                          "Getting LogLevel from register - failed",
                          "Getting Firmware File Paths from: " + directory + "\\;x;" + missing,
                          "Candidate path : " + directory + "\\", "Removing last backslash",
                          "Read next FWFilePath : " + directory, "Candidate path : x",
                          "Path x is too short", "Candidate path : " + missing));
}

TEST_F(QuorvelConfig, KeepsFirmwareFoldersInTheirOrder) {
  const std::string second = folder("b");
  const std::string first = folder("a");
  const std::string file = m_directory.write("file", std::string("x")).string();
  write("FWFilePath = " + second + ";;" + file + ";" + first + ";\n");

  EXPECT_THAT(m_config.getFWFilePaths(), ElementsAre(second, first));
}

TEST_F(QuorvelConfig, CountsAFirmwareFolderOfTwoCharactersAsLongEnough) {
  write("FWFilePath = ..;/\n");

  EXPECT_THAT(m_config.getFWFilePaths(), ElementsAre(".."));
}

TEST_F(QuorvelConfig, TakesOneBackslashOffOnly) {
  const std::string directory = folder("fw");
  write("FWFilePath = " + directory + "\\\\\n");

  EXPECT_THAT(m_config.getFWFilePaths(), IsEmpty());
}

TEST_F(QuorvelConfig, FollowsItsFile) {
  write("Timeout = 250\nOEMCustomizeable = 0x20\nFWFilePath = ..\n");
  EXPECT_EQ(m_config.getTimeout(), 250U);
  write("Timeout = 500\nOEMCustomizeable = 0\nFWFilePath = ..;..\n");
  EXPECT_EQ(m_config.getTimeout(), 500U);
  EXPECT_FALSE(m_config.getDowngradeEnable());
  EXPECT_THAT(m_config.getFWFilePaths(), ElementsAre("..", ".."));
}

TEST_F(QuorvelConfig, KeepsWhatItReadWhenASettingGoesAway) {
  write("Timeout = 250\nNamespace = root/x\nOEMCustomizeable = 0x20\nFWFilePath = ..\n");
  m_config.initialize();
  std::filesystem::remove(m_path);

  EXPECT_EQ(m_config.getTimeout(), 250U);
  EXPECT_EQ(m_config.getNamespace(), "root/x");
  EXPECT_TRUE(m_config.getDowngradeEnable());
  EXPECT_THAT(m_config.getFWFilePaths(), IsEmpty());
}

TEST_F(QuorvelConfig, IsTheCurrentOneOnceConstructed) {
  write("Timeout = 250\n");

  EXPECT_EQ(utils::QuorvelConfig::getInstance(), &m_config);
  EXPECT_EQ(utils::QuorvelConfig::getInstance()->getTimeout(), 250U);
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

TEST_F(QuorvelConfig, IsReadByManyThreadsWhileItsFileChanges) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 50;
  write("Timeout = 1\nFWFilePath = ..\n");
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
    write(round % 2 == 0 ? "Timeout = 2\nFWFilePath = ..\n" : "Timeout = 1\nFWFilePath = ..\n");
  }
  for (std::thread& thread : threads) {
    thread.join();
  }

  EXPECT_EQ(wrong.load(), 0);
}

}  // namespace
