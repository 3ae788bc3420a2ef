// Over files that hang: a FIFO as `vpd` holds whoever reads it as a busy driver does.

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "midapi/Kernel/DriverInquiry.h"
#include "tests/midapi/Kernel/AskedChildren.h"
#include "tests/midapi/Kernel/SysfsFixture.h"
#include "tests/support/Posix/Processes.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/WaitUntil.h"

namespace {

using ma::DriverAnswer;
using ma::DriverInquiry;
using ma::DriverQuestion;
using std::chrono::hours;
using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string kFirst = "0000:03:00.0";
const std::string kSecond = "0000:04:00.0";
const std::string kThird = "0000:05:00.0";

std::atomic<int> s_forks{0};

int countedFork() {
  ++s_forks;
  return ::fork();
}

int failingFork() {
  errno = EAGAIN;
  return -1;
}

class DriverInquiryTest : public testing::Test {
 protected:
  DriverInquiryTest() {
    s_forks = 0;
    ma::buryOrphans();  // those of other tests
    for (const std::string& id : {kFirst, kSecond, kThird}) {
      m_sysfs.addFunction(id);
      m_sysfs.setAttribute(id, "vpd", "x");
    }
  }

  static ma::InquirySettings settings() {
    ma::InquirySettings settings;
    settings.patience = test::kDeadline;
    settings.lateFor = hours(1);
    settings.of = ma::FunctionInquiry::Of::FilesAlone;
    settings.forks.here = countedFork;
    return settings;
  }
  void begin(const ma::InquirySettings& settings) { m_inquiry.emplace(settings); }
  // Has somebody keep silent.
  void hold(const std::string& id, milliseconds lateFor = hours(1)) {
    std::filesystem::remove(vpd(id));
    ASSERT_EQ(::mkfifo(vpd(id).c_str(), 0600), 0);
    auto settings = DriverInquiryTest::settings();
    settings.patience = milliseconds(50);
    settings.lateFor = lateFor;
    begin(settings);
  }

  std::vector<DriverQuestion> questions() const {
    std::vector<DriverQuestion> questions;
    for (const ma::PciFunction& function : ma::findPciFunctions(m_sysfs.root())) {
      questions.push_back({function, true, false});
    }
    return questions;
  }
  static std::string told(const DriverAnswer& answer) {
    return answer.error != 0 ? "error " + std::to_string(answer.error)
           : answer.isAway || answer.isPartial
               ? "away"
               : std::string(answer.vpd.bytes.begin(), answer.vpd.bytes.end());
  }
  // Returns what is answered for each function.
  std::vector<std::string> ask() { return ask(questions()); }
  std::vector<std::string> ask(const std::vector<DriverQuestion>& questions) {
    std::vector<std::string> texts;
    for (const DriverAnswer& answer : m_inquiry->ask(questions)) {
      texts.push_back(told(answer));
    }
    return texts;
  }

  [[nodiscard]] std::ptrdiff_t livingChildren() const {
    const auto children = m_children.all();
    return std::count_if(children.begin(), children.end(), [](pid_t child) {
      return !test::statusOf(child, "State").starts_with("Z");
    });
  }

  std::string vpd(const std::string& id) const { return m_sysfs.folder(id) / "vpd"; }
  // Lets those go who wait for somebody to write.
  static void release(const std::string& fifo, const std::string& text = "") {
    const platform::Descriptor file(::open(fifo.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC));
    EXPECT_EQ(::write(file.get(), text.data(), text.size()),
              file.isOpen() ? static_cast<ssize_t>(text.size()) : -1);
  }
  // Makes an ordinary file of it, for those who come from now on; `text` is for who waits.
  void free(const std::string& id, const std::string& text) {
    const std::string old = vpd(id) + ".old";
    std::filesystem::rename(vpd(id), old);
    m_sysfs.setAttribute(id, "vpd", "y");
    release(old, text);
  }

  test::AskedChildren m_children;
  test::SysfsFixture m_sysfs;
  std::optional<DriverInquiry> m_inquiry{settings()};
};

TEST_F(DriverInquiryTest, AsksForAllByOneChild) {
  m_sysfs.setAttribute(kSecond, "rom", "ROM");
  auto questions = this->questions();
  questions[1].wantsRom = true;
  questions[2].wantsVpd = false;
  const auto answers = m_inquiry->ask(questions);
  EXPECT_EQ(s_forks, 1);
  ASSERT_THAT(answers, SizeIs(3));
  EXPECT_THAT(answers[0].vpd.bytes, ElementsAre('x', '\n'));
  EXPECT_THAT(answers[1].rom.bytes, ElementsAre('R', 'O', 'M', '\n'));
  EXPECT_THAT(answers[2].vpd.bytes, IsEmpty());
}

TEST_F(DriverInquiryTest, AsksNobodyForNothing) {
  EXPECT_THAT(ask({}), IsEmpty());
  EXPECT_EQ(s_forks, 0);
}

TEST_F(DriverInquiryTest, LeavesNothingBehindWhereAllAnswer) {
  const std::size_t openFiles = test::countOpenFiles();
  ask();
  // This process takes orphans in, and buries them when it looks again.
  EXPECT_TRUE(test::waitUntil([&] {
    ask({});
    return m_children.all().empty();
  }));
  EXPECT_EQ(test::countOpenFiles(), openFiles);
}

TEST_F(DriverInquiryTest, StealsNobodysChild) {
  const pid_t others = ::fork();
  if (others == 0) {
    ::_exit(7);
  }
  EXPECT_TRUE(test::waitUntil([&] { return test::statusOf(others, "State").starts_with("Z"); }));
  ask();
  EXPECT_TRUE(test::waitUntil([&] {
    ask({});
    return m_children.all().size() == 1;
  }));
  EXPECT_EQ(test::awaitEnd(others), 7);
}

TEST_F(DriverInquiryTest, GoesOnWithoutTheOneThatDoesNotAnswer) {
  hold(kSecond);
  EXPECT_THAT(ask(), ElementsAre("x\n", "away", "x\n"));
  EXPECT_EQ(s_forks, 2);
}

TEST_F(DriverInquiryTest, GivesOutWhatItHasGotByThen) {
  hold(kSecond);
  std::filesystem::rename(vpd(kSecond), m_sysfs.folder(kSecond) / "rom");
  m_sysfs.setAttribute(kSecond, "vpd", "x");
  auto question = questions()[1];
  question.wantsRom = true;
  for (int look = 0; look < 2; ++look) {
    const DriverAnswer answer = m_inquiry->ask({&question, 1})[0];
    EXPECT_TRUE(answer.isPartial && !answer.isAway);
    EXPECT_THAT(answer.vpd.bytes, ElementsAre('x', '\n'));
    EXPECT_EQ(answer.vpd.error, 0);
    EXPECT_EQ(answer.rom.error, EBUSY);
  }
  EXPECT_EQ(s_forks, 1);
}

TEST_F(DriverInquiryTest, AsksNobodyTwiceWhoDoesNotAnswer) {
  hold(kSecond);
  ask();
  EXPECT_TRUE(test::waitUntil([&] {
    ask({});
    return m_children.all().size() == 1;
  }));
  const std::size_t openFiles = test::countOpenFiles();
  for (int i = 0; i < 3; ++i) {
    EXPECT_THAT(ask({questions()[1]}), ElementsAre("away"));
  }
  EXPECT_EQ(s_forks, 2);
  EXPECT_EQ(test::countOpenFiles(), openFiles);
  // The other child had nothing more to do.
  EXPECT_TRUE(test::waitUntil([this] { return livingChildren() == 1; }));
}

TEST_F(DriverInquiryTest, TakesAnAnswerThatComesLate) {
  hold(kSecond);
  ask();
  free(kSecond, "late");
  std::vector<std::string> answers;
  ASSERT_TRUE(test::waitUntil([&] { return (answers = ask())[1] != "away"; }));
  EXPECT_THAT(answers, ElementsAre("x\n", "late", "x\n"));
  EXPECT_THAT(ask(), ElementsAre("x\n", "y\n", "x\n"));
}

TEST_F(DriverInquiryTest, TakesNoAnswerToAnEarlierQuestionForTheLatest) {
  hold(kSecond);
  ask();
  free(kSecond, "late");
  auto question = questions()[1];
  question.wantsLatest = true;
  std::string answer;
  ASSERT_TRUE(test::waitUntil([&] { return (answer = ask({question})[0]) != "away"; }));
  EXPECT_EQ(answer, "y\n");
}

TEST_F(DriverInquiryTest, AsksAgainWhereTheAnswerCameLongAgo) {
  hold(kSecond, milliseconds(-1));
  ask();
  free(kSecond, "late");
  std::vector<std::string> answers;
  ASSERT_TRUE(test::waitUntil([&] { return (answers = ask())[1] != "away"; }));
  EXPECT_THAT(answers, ElementsAre("x\n", "y\n", "x\n"));
}

TEST_F(DriverInquiryTest, AsksAgainWhereTheChildWasKilled) {
  hold(kSecond);
  ask({questions()[1]});
  ASSERT_THAT(m_children.all(), SizeIs(1));
  ::kill(m_children.all()[0], SIGKILL);
  EXPECT_EQ(m_children.awaitOne(), 128 + SIGKILL);
  free(kSecond, "");
  EXPECT_THAT(ask(), ElementsAre("x\n", "y\n", "x\n"));
}

TEST_F(DriverInquiryTest, LeavesNothingBehindOfWhatIsUnplugged) {
  const std::size_t openFiles = test::countOpenFiles();
  hold(kSecond, milliseconds(-1));
  ask();
  EXPECT_GT(test::countOpenFiles(), openFiles);
  const std::vector<DriverQuestion> others{questions()[0]};
  free(kSecond, "late");
  EXPECT_TRUE(test::waitUntil([&] {
    ask(others);
    ask({});
    return test::countOpenFiles() == openFiles;
  }));
}

TEST_F(DriverInquiryTest, IsNotHeldUpForLongBySeveral) {
  hold(kFirst);
  hold(kSecond);
  hold(kThird);
  EXPECT_THAT(ask(), ElementsAre("away", "away", "away"));
  EXPECT_EQ(s_forks, 3);
  EXPECT_THAT(m_children.all(), SizeIs(3));
}

TEST_F(DriverInquiryTest, SaysWhyNothingCanBeAsked) {
  auto settings = DriverInquiryTest::settings();
  settings.forks.here = failingFork;
  begin(settings);
  const std::string error = "error " + std::to_string(EAGAIN);
  EXPECT_THAT(ask(), ElementsAre(error, error, error));
}

TEST_F(DriverInquiryTest, IsAskedByManyAtOnce) {
  hold(kSecond);
  std::vector<std::thread> threads;
  threads.reserve(4);
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([this] { EXPECT_THAT(ask(), ElementsAre("x\n", "away", "x\n")); });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_TRUE(test::waitUntil([this] { return livingChildren() == 1; }));
}

// Two programs, as far as drivers can tell.
class DriverInquiryOfTwo : public DriverInquiryTest {
 protected:
  ma::InquirySettings shared() const {
    auto settings = DriverInquiryTest::settings();
    settings.patience = milliseconds(50);
    settings.locks = m_locks.path();
    return settings;
  }

  test::TempDirectory m_locks;
};

TEST_F(DriverInquiryOfTwo, AsksNobodyAtWhomAnotherHangs) {
  hold(kSecond);
  begin(shared());
  EXPECT_THAT(ask(), ElementsAre("x\n", "away", "x\n"));
  DriverInquiry other(shared());
  s_forks = 0;
  for (int look = 0; look < 3; ++look) {
    const auto answers = other.ask(questions());
    EXPECT_EQ(told(answers[0]) + told(answers[1]) + told(answers[2]), "x\nawayx\n");
  }
  EXPECT_EQ(s_forks, 3);
  // Those three had nothing more to do.
  EXPECT_TRUE(test::waitUntil([this] { return livingChildren() == 1; }));
  free(kSecond, "");
  EXPECT_TRUE(test::waitUntil([&] { return told(other.ask(questions())[1]) == "y\n"; }));
}

TEST_F(DriverInquiryOfTwo, AsksAgainWhereTheOtherOneWasKilled) {
  hold(kSecond);
  begin(shared());
  ask({questions()[1]});
  for (const pid_t child : m_children.all()) {
    ::kill(child, SIGKILL);
    static_cast<void>(test::awaitEnd(child));
  }
  free(kSecond, "");
  DriverInquiry other(shared());
  EXPECT_EQ(told(other.ask(questions())[1]), "y\n");
}

TEST_F(DriverInquiryOfTwo, WaitForEachOtherWhereNoneHangs) {
  auto settings = shared();
  settings.patience = test::kDeadline;
  begin(settings);
  DriverInquiry other(settings);
  std::thread another([&] {
    for (int i = 0; i < 20; ++i) {
      EXPECT_EQ(told(other.ask(questions())[1]), "x\n");
    }
  });
  for (int i = 0; i < 20; ++i) {
    EXPECT_THAT(ask(), ElementsAre("x\n", "x\n", "x\n"));
  }
  another.join();
}

}  // namespace
