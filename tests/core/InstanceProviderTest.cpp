#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <gmock/gmock.h>
#include <new>
#include <thread>
#include <utility>

#include "Utils/Exception.h"
#include "core/InstanceProvider.h"
#include "tests/core/TestInstance.h"
#include "tests/support/LogCapture.h"
#include "tests/support/VirtualSlots.h"

namespace {

using test::Instance;
using test::IsRecordOf;
using test::LogCapture;
using test::LogLevel;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr utils::LogSource kSource{"Test_ThingClass"};
constexpr const char* kFunction = "Test_ThingClass::getInstances";

// A provider that builds as many instances as it is told, the last of them deleted.
class ThingProvider : public core::InstanceProvider {
 public:
  ThingProvider(const core::EnumerationLog& log, int count)
      : InstanceProvider("Test_Thing", log), m_count(count) {}

 protected:
  void refresh() override {
    if (m_count < 0) {
      throw utils::EUnspecifiedError("cannot");
    }
    instances().clear();
    for (int i = 0; i < m_count; ++i) {
      auto* instance = new Instance(std::to_string(i));
      instance->setDeleted(i == m_count - 1);
      instances().add(instance);
    }
  }

 private:
  int m_count;
};

// Where two threads meet that come to the same place. One that comes alone goes on after a moment.
class Meeting {
 public:
  void attend() {
    if (m_arrivals.fetch_add(1) == 1) {
      m_both.set_value();
    }
    const std::shared_future<void> both = m_future;
    both.wait_for(std::chrono::milliseconds(100));
  }

 private:
  std::atomic<int> m_arrivals{0};
  std::promise<void> m_both;
  const std::shared_future<void> m_future{m_both.get_future().share()};
};

void enumerateOnTwoThreads(core::CimClass& provider) {
  std::thread other([&] { static_cast<void>(provider.getInstances()); });
  static_cast<void>(provider.getInstances());
  other.join();
}

// A provider of one instance, in whose enumerations threads may meet.
class MeetingProvider : public core::InstanceProvider {
 public:
  MeetingProvider() : InstanceProvider("Test_Thing", {kSource, kFunction}) {}

 protected:
  void refresh() override {
    instances().clear();
    m_meeting.attend();
    instances().add(new Instance("only"));
  }

 private:
  Meeting m_meeting;
};

TEST(InstanceProvider, IsEnumeratedByOneThreadAtATime) {
  const LogCapture log;
  MeetingProvider provider;
  enumerateOnTwoThreads(provider);

  EXPECT_THAT(log.messages(kFunction), ElementsAre("return 1", "return 1"));
}

class OnlyThing : public Instance {
 public:
  void setPropertyValues() { Size.setValue(static_cast<std::uint16_t>(Size.getValue() + 1)); }
};

// A provider with an operation of its own.
class ExtendedProvider : public core::InstanceProvider {
 public:
  virtual int extend() { return 1; }

 protected:
  void refresh() override {}
};

TEST(InstanceProvider, KeepsTheOrderOfTheVirtualOperationsOfItsInterface) {
  EXPECT_EQ(test::slotOf(&core::CimClass::getName), 0U);
  EXPECT_EQ(test::slotOf(&core::CimClass::getInstances), 1U);
  EXPECT_EQ(test::slotOf(&ExtendedProvider::extend), 4U);
}

// A provider whose enumeration calls back.
class CallingProvider : public core::InstanceProvider {
 public:
  explicit CallingProvider(std::function<void(CallingProvider&)> call)
      : InstanceProvider("Test_Thing", {kSource, kFunction}), m_call(std::move(call)) {
    instances().add(&m_thing);
  }
  void withdrawThing() { withdraw(&m_thing); }

 protected:
  void refresh() override { m_call(*this); }

 private:
  Instance m_thing;
  const std::function<void(CallingProvider&)> m_call;
};

TEST(InstanceProvider, WithdrawsNoInstanceWhileItIsEnumerated) {
  std::future<void> withdrawn;
  CallingProvider provider([&withdrawn](CallingProvider& self) {
    withdrawn = std::async(std::launch::async, [&self] { self.withdrawThing(); });
    EXPECT_EQ(withdrawn.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
  });
  core::InstanceList::Iterator cursor = provider.getInstances();
  withdrawn.get();

  EXPECT_EQ(cursor.count(), 0U);
}

TEST(InstanceProvider, ServesItsClassName) {
  EXPECT_EQ(ThingProvider({kSource, kFunction}, 0).getName(), "Test_Thing");
}

TEST(InstanceProvider, GivesACursorPastDeletedInstances) {
  ThingProvider provider({kSource, kFunction}, 3);
  core::InstanceList::Iterator cursor = provider.getInstances();

  EXPECT_EQ(cursor.count(), 2U);
  EXPECT_EQ(cursor.first()->getPath(), "Test_Thing.Name=\"0\"");
}

TEST(InstanceProvider, GivesAnEmptyCursorWithoutInstances) {
  ThingProvider provider({kSource, kFunction}, 0);
  core::InstanceList::Iterator cursor = provider.getInstances();

  EXPECT_EQ(cursor.first(), nullptr);
  EXPECT_EQ(cursor.count(), 0U);
}

TEST(InstanceProvider, BuildsItsInstancesAnewInEachEnumeration) {
  ThingProvider provider({kSource, kFunction}, 3);
  static_cast<void>(provider.getInstances());

  EXPECT_EQ(provider.getInstances().count(), 2U);
}

TEST(InstanceProvider, LogsHowManyInstancesItHas) {
  ThingProvider provider({kSource, kFunction}, 3);
  const LogCapture log;
  static_cast<void>(provider.getInstances());

  EXPECT_THAT(log.records(),
              ElementsAre(IsRecordOf(kSource.name, LogLevel::Debug, kFunction, "return 3")));
}

// A provider's source is the file in which its enumeration is named.
TEST(InstanceProvider, LogsWhereItsEnumerationIsNamed) {
  const int line = __LINE__ + 1;
  core::SingleInstanceProvider<OnlyThing> provider("Test_Thing", {kSource, kFunction, "things"});
  const LogCapture log;
  static_cast<void>(provider.getInstances());

  const auto standsThere = testing::Field(&test::LogRecord::line, line);
  std::vector<test::LogRecord> own = log.records();
  std::erase_if(own, [](const test::LogRecord& record) { return record.source != kSource.name; });
  EXPECT_THAT(own, ElementsAre(standsThere, standsThere, standsThere));
}

TEST(InstanceProvider, LogsAFirstRecordAndTheTimedBlockWhenItHasThem) {
  ThingProvider provider({kSource, kFunction, "100% things", "things"}, 1);
  const LogCapture log;
  static_cast<void>(provider.getInstances());

  EXPECT_THAT(log.records(),
              ElementsAre(IsRecordOf(kSource.name, LogLevel::Debug, kFunction, "100% things"),
                          IsRecordOf("Debug", LogLevel::Debug, "utils::TimeStamp::Init",
                                     HasSubstr(" Entering 'things'")),
                          IsRecordOf(kSource.name, LogLevel::Debug, kFunction, "return 1"),
                          IsRecordOf("Debug", LogLevel::Debug, "utils::TimeStamp::~TimeStamp",
                                     HasSubstr(" Leaving  'things' after "))));
}

TEST(InstanceProvider, LeavesTheTimedBlockWhenItsEnumerationFails) {
  ThingProvider provider({kSource, kFunction, nullptr, "things"}, -1);
  const LogCapture log;
  EXPECT_THROW(static_cast<void>(provider.getInstances()), utils::EUnspecifiedError);

  EXPECT_THAT(log.messages("utils::TimeStamp::~TimeStamp"),
              ElementsAre(HasSubstr(" Leaving  'things' after ")));
}

TEST(SingleInstanceProvider, MakesItsInstanceOnceAndKeepsIt) {
  core::SingleInstanceProvider<OnlyThing> provider("Test_Thing", {kSource, kFunction});
  const LogCapture log;
  core::CimInstance* first = provider.getInstances().first();
  core::CimInstance* second = provider.getInstances().first();

  EXPECT_EQ(first, second);
  EXPECT_EQ(static_cast<OnlyThing*>(first)->Size.getValue(), 1);
  EXPECT_THAT(log.messages(kFunction), ElementsAre("create new instance", "return 1", "return 1"));
}

class MeetingThing : public Instance {
 public:
  MeetingThing() { ++s_made; }
  void setPropertyValues() { s_meeting.attend(); }

  static inline Meeting s_meeting;
  static inline std::atomic<int> s_made{0};
};

TEST(SingleInstanceProvider, MakesItsInstanceOnceForTwoThreadsAtOnce) {
  core::SingleInstanceProvider<MeetingThing> provider("Test_Thing", {kSource, kFunction});
  enumerateOnTwoThreads(provider);

  EXPECT_EQ(MeetingThing::s_made, 1);
  EXPECT_EQ(provider.getInstances().count(), 1U);
}

// Cannot be built, or filled, before a number of attempts.
template <bool kIsBuilt>
class ReluctantThing : public Instance {
 public:
  static inline int refusals = 0;

  ReluctantThing() { refuse(!kIsBuilt); }
  void setPropertyValues() { refuse(kIsBuilt); }

 private:
  static void refuse(bool isHere) {
    if (isHere && refusals > 0) {
      --refusals;
      throw std::bad_alloc();
    }
  }
};

template <bool kIsBuilt>
void expectEachEnumerationTries() {
  ReluctantThing<kIsBuilt>::refusals = 2;
  core::SingleInstanceProvider<ReluctantThing<kIsBuilt>> provider("Test_Thing",
                                                                  {kSource, kFunction});
  const LogCapture log;
  EXPECT_THROW(static_cast<void>(provider.getInstances()), std::bad_alloc);
  EXPECT_THROW(static_cast<void>(provider.getInstances()), std::bad_alloc);
  EXPECT_EQ(provider.getInstances().count(), 1U);
  // That it tried the second time says that the first left nothing behind.
  EXPECT_THAT(log.messages(kFunction), ElementsAre("create new instance", "create new instance",
                                                   "create new instance", "return 1"));
}

TEST(SingleInstanceProvider, TriesAgainAfterAWantOfMemory) {
  expectEachEnumerationTries<false>();
  expectEachEnumerationTries<true>();
}

TEST(SingleInstanceProvider, KeepsADeletedInstanceOutOfSight) {
  core::SingleInstanceProvider<OnlyThing> provider("Test_Thing", {kSource, kFunction});
  provider.getInstances().first()->setDeleted(true);

  EXPECT_EQ(provider.getInstances().count(), 0U);
}

}  // namespace
