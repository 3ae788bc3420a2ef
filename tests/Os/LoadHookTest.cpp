#include <gmock/gmock.h>

#include "Os/LoadHook.h"
#include "Utils/Exception.h"
#include "tests/support/LogCapture.h"

namespace {

using test::IsRecordOf;
using test::LogCapture;
using test::LogLevel;
using testing::Contains;
using testing::IsEmpty;

constexpr utils::LogSource kLog{"SomeModule"};
constexpr const char* kFunction = "os::runLoadHook";

int s_attachments = 0;

void attach() {
  ++s_attachments;
}

void runOutOfMemory() {
  throw utils::Exception("no %s", "memory");
}

void throwNumber() {
  throw 42;
}

TEST(LoadHook, AttachesOnceAndLogsNothing) {
  const LogCapture log;
  s_attachments = 0;
  os::runLoadHook(kLog, "The module has no seats", attach);
  EXPECT_EQ(s_attachments, 1);
  EXPECT_THAT(log.records(), IsEmpty());
}

TEST(LoadHook, LogsWhatAttachingThrows) {
  const LogCapture log;
  os::runLoadHook(kLog, "The module has no seats", runOutOfMemory);
  EXPECT_THAT(log.records(test::LogSink::EventLog),
              Contains(IsRecordOf("SomeModule", LogLevel::Error, kFunction,
                                  "The module has no seats: no memory")));
}

TEST(LoadHook, LogsThatSomethingUnknownWasThrown) {
  const LogCapture log;
  os::runLoadHook(kLog, "The module has no seats", throwNumber);
  EXPECT_THAT(
      log.records(test::LogSink::EventLog),
      Contains(IsRecordOf("SomeModule", LogLevel::Error, kFunction, "The module has no seats")));
}

}  // namespace
