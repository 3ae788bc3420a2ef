#include <chrono>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <optional>
#include <string>
#include <unistd.h>

#include "daemon/Posix/SystemLogAudit.h"
#include "platform/Posix/Descriptor.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Posix/DatagramSocket.h"
#include "tests/support/Regex.h"
#include "tests/support/TempDirectory.h"

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

const wbem::AuditRecord kRecord{{"anna", "192.0.2.7", wbem::Role::Operator},
                                "InstallFromURI",
                                "4096",
                                "Orvex_SoftwareInstallationService.Name=\"x\"",
                                {}};
const std::string kLine =
    R"(user="anna" address="192.0.2.7" role="operator" action="InstallFromURI" )"
    R"(result="4096" target="Orvex_SoftwareInstallationService.Name=\"x\"")";

// Returns what is written of a user.
std::string userOf(const std::string& user) {
  const std::string line = quorveld::formatAudit({{user, "", wbem::Role::Reader}, "", "", "", {}});
  const std::string rest = R"(" address="" role="reader" action="" result="" target="")";
  EXPECT_THAT(line, EndsWith(rest));
  return line.substr(6, line.size() - 6 - rest.size());
}

TEST(FormatAudit, NamesEverythingWithTheTargetLast) {
  EXPECT_EQ(quorveld::formatAudit(kRecord), kLine);
}

TEST(FormatAudit, HasTheDetailsBehindTheTarget) {
  wbem::AuditRecord record = kRecord;
  record.details = {{"adapter", "0000:03:00.0"}, {"file", "/a \"b\".rom"}};
  EXPECT_EQ(quorveld::formatAudit(record),
            kLine + R"( adapter="0000:03:00.0" file="/a \"b\".rom")");
}

TEST(FormatAudit, GivesNoRoleToWhoHasNone) {
  EXPECT_THAT(quorveld::formatAudit({{"anna", "", std::nullopt}, "Login", "refused", "", {}}),
              HasSubstr(R"(role="" action="Login")"));
}

TEST(FormatAudit, EscapesWhatCouldPassForSomethingElse) {
  EXPECT_EQ(userOf("a\"b\\c"), R"(a\"b\\c)");
  EXPECT_EQ(userOf("a\nb\tc\x7F"), R"(a\x0Ab\x09c\x7F)");
  EXPECT_EQ(userOf(std::string("a\0b", 3)), R"(a\x00b)");
  EXPECT_EQ(userOf("%s%n"), "%s%n");
  EXPECT_EQ(userOf("\x1B[2J"), R"(\x1B[2J)");
}

TEST(FormatAudit, LeavesUtf8AndEscapesOtherBytes) {
  EXPECT_EQ(userOf("J\xC3\xBCrgen \xE2\x82\xAC \xF0\x9F\x98\x80"),
            "J\xC3\xBCrgen \xE2\x82\xAC \xF0\x9F\x98\x80");
  EXPECT_EQ(userOf("\xC3"), R"(\xC3)");                          // cut short
  EXPECT_EQ(userOf("\xC3x"), R"(\xC3x)");                        // no second byte
  EXPECT_EQ(userOf("\xC0\xAF"), R"(\xC0\xAF)");                  // longer than it has to be
  EXPECT_EQ(userOf("\xED\xA0\x80"), R"(\xED\xA0\x80)");          // a surrogate
  EXPECT_EQ(userOf("\xC2\x85"), R"(\xC2\x85)");                  // a control character
  EXPECT_EQ(userOf("\xE2\x80\xA8"), R"(\xE2\x80\xA8)");          // a line separator
  EXPECT_EQ(userOf("\xF4\x90\x80\x80"), R"(\xF4\x90\x80\x80)");  // above the last one
  EXPECT_EQ(userOf("\xE2\x80\xAE"), R"(\xE2\x80\xAE)");          // from right to left
  EXPECT_EQ(userOf("\xE2\x81\xA6"), R"(\xE2\x81\xA6)");          // the same
  EXPECT_EQ(userOf("\xEF\xBB\xBF"), R"(\xEF\xBB\xBF)");          // not to be seen
}

TEST(FormatAudit, CutsLongTexts) {
  const std::string most(quorveld::SystemLogAudit::kMostBytes, 'x');
  EXPECT_EQ(userOf(most), most);
  EXPECT_EQ(userOf(most + "y"), most + "...");
  // No character is cut in two.
  EXPECT_EQ(userOf(most.substr(1) + "\xC3\xBC"), most.substr(1) + "...");
}

constexpr std::chrono::milliseconds kPatience{1};

TEST(SystemLogAudit, WritesOneRecordToTheSystemLog) {
  const test::TempDirectory directory;
  const std::string path = (directory.path() / "log").string();
  const test::DatagramSocket socket(path);
  const test::LogCapture log;
  EXPECT_TRUE(quorveld::SystemLogAudit(path).write(kRecord, kPatience));
  // Facility authpriv (10), severity notice (5).
  EXPECT_THAT(socket.receive(),
              test::MatchesRegex("<85>[A-Z][a-z][a-z] [ 1-3][0-9] [0-9:]{8} quorveld\\[" +
                                 std::to_string(getpid()) + "\\]: " + test::quoteRegex(kLine)));
  EXPECT_EQ(socket.receive(), "");
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(SystemLogAudit, SaysThatASystemLogThatDoesNotReadHasNoRoom) {
  const test::TempDirectory directory;
  const std::string path = (directory.path() / "log").string();
  const test::DatagramSocket socket(path);
  quorveld::SystemLogAudit audit(path);
  unsigned taken = 0;
  while (audit.write(kRecord, kPatience)) {
    ++taken;
  }
  EXPECT_GT(taken, 0u);
  EXPECT_NE(socket.receive(), "");
  EXPECT_TRUE(audit.write(kRecord, kPatience));
}

TEST(SystemLogAudit, WritesToTheAgentsLogAndStandardErrorWhereThereIsNoSystemLog) {
  const test::TempDirectory directory;
  const test::LogCapture log;
  testing::internal::CaptureStderr();
  EXPECT_TRUE(
      quorveld::SystemLogAudit((directory.path() / "missing").string()).write(kRecord, kPatience));
  EXPECT_TRUE(quorveld::SystemLogAudit("/" + std::string(200, 'x')).write(kRecord, kPatience));
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "quorveld: audit: " + kLine + "\nquorveld: audit: " + kLine + "\n");
  EXPECT_THAT(log.messages("quorveld::SystemLogAudit::write"),
              ElementsAre(HasSubstr("audit: " + kLine), HasSubstr("audit: " + kLine)));
}

// Standard error may be a pipe to a log that does not read, either.
TEST(SystemLogAudit, DoesNotWaitForStandardError) {
  int ends[2] = {-1, -1};
  ASSERT_EQ(pipe(ends), 0);
  const int kept = dup(STDERR_FILENO);
  dup2(ends[1], STDERR_FILENO);
  quorveld::SystemLogAudit audit("/missing");
  for (int i = 0; i < 2000; ++i) {
    audit.writeElsewhere(kRecord);
  }
  dup2(kept, STDERR_FILENO);
  for (const int descriptor : {kept, ends[0], ends[1]}) {
    close(descriptor);
  }
}

// Nor may a full disk that it goes to cost more than the record.
TEST(SystemLogAudit, GoesOnWhereStandardErrorIsAFullDisk) {
  const test::LogCapture log;
  const platform::Descriptor kept(dup(STDERR_FILENO));
  const platform::Descriptor full(open("/dev/full", O_WRONLY | O_CLOEXEC));
  ASSERT_TRUE(full.isOpen());
  dup2(full.get(), STDERR_FILENO);
  quorveld::SystemLogAudit audit("/missing");
  const bool isDone = audit.write(kRecord, kPatience);
  audit.writeElsewhere(kRecord);
  dup2(kept.get(), STDERR_FILENO);
  EXPECT_TRUE(isDone);
  EXPECT_THAT(log.messages("quorveld::SystemLogAudit::write"), ElementsAre(HasSubstr(kLine)));
}

}  // namespace
