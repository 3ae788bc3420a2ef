#include <gmock/gmock.h>
#include <memory>
#include <optional>

#include "Utils/Format.h"
#include "Utils/Singleton.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Throws.h"
#include "tests/support/VirtualSlots.h"

namespace {

using test::IsRecordOf;
using test::LogCapture;
using test::LogLevel;
using testing::ElementsAre;
using testing::IsEmpty;

class Widget : public utils::Singleton<Widget> {
 public:
  static constexpr const char* kTypeName = "factory::Widget";
};

class Gadget : public utils::Singleton<Gadget> {
 public:
  static constexpr const char* kTypeName = "Gadget";
};

// One that is reached through a second base, as a provider that is a singleton at the same time.
class Ledger {
 public:
  virtual ~Ledger() = default;
  int entries = 7;
};
class LedgerSingleton : public Ledger, public utils::Singleton<LedgerSingleton> {
 public:
  static constexpr const char* kTypeName = "LedgerSingleton";
};

auto throwsNoInstanceOf(const std::string& name) {
  return test::ThrowsExactly<utils::Exception>("No singleton instance found for " + name);
}

TEST(Singleton, IsNotMadeByAskingForIt) {
  EXPECT_THAT([] { return Widget::getInstance(); }, throwsNoInstanceOf("Widget"));
  EXPECT_THAT([] { return Gadget::getInstance(); }, throwsNoInstanceOf("Gadget"));
}

TEST(Singleton, IsAStackOfInstances) {
  std::optional<Widget> first(std::in_place);
  EXPECT_EQ(Widget::getInstance(), &*first);
  std::optional<Widget> second(std::in_place);
  EXPECT_EQ(Widget::getInstance(), &*second);

  second.reset();
  EXPECT_EQ(Widget::getInstance(), &*first);
  first.reset();
  EXPECT_THAT([] { return Widget::getInstance(); }, throwsNoInstanceOf("Widget"));
}

TEST(Singleton, HasASlotForEachType) {
  const Widget widget;

  EXPECT_THAT([] { return Gadget::getInstance(); }, throwsNoInstanceOf("Gadget"));
}

TEST(Singleton, IsTheWholeObjectBehindASecondBase) {
  LedgerSingleton ledger;

  EXPECT_EQ(LedgerSingleton::getInstance(), &ledger);
  EXPECT_EQ(LedgerSingleton::getInstance()->entries, 7);
}

TEST(Singleton, LogsItsConstructionAndEveryUse) {
  const LogCapture log;
  const Widget widget;
  static_cast<void>(Widget::getInstance());
  static_cast<void>(Widget::getInstance());

  const auto used = IsRecordOf(
      "Utils/Singleton", LogLevel::Debug, "utils::Singleton<class factory::Widget>::getInstance",
      utils::format("Instance of Widget (#%p)", static_cast<const void*>(&widget)));
  EXPECT_THAT(log.records(),
              ElementsAre(IsRecordOf("Utils/Singleton", LogLevel::Debug,
                                     "utils::Singleton<class factory::Widget>::Singleton",
                                     "New singleton instance for Widget"),
                          used, used));
}

TEST(Singleton, HasNoVirtualOperationButItsDestructor) {
  struct Extended : Widget {
    virtual void extend() {}
  };
  EXPECT_EQ(test::slotOf(&Extended::extend), 2U);
}

class Settings : public utils::AutoSingleton<Settings> {
 public:
  static constexpr const char* kTypeName = "Settings";

  explicit Settings(int value = 42) : m_value(value) {}
  [[nodiscard]] int value() const { return m_value; }

 private:
  int m_value;
};

TEST(AutoSingleton, IsMadeOnFirstUseWithDefaultArgumentsAndThenKept) {
  const LogCapture log;
  Settings* settings = Settings::getInstance();

  EXPECT_EQ(settings->value(), 42);
  EXPECT_EQ(Settings::getInstance(), settings);
  EXPECT_THAT(log.records(), ElementsAre(IsRecordOf("Utils/Singleton", LogLevel::Debug,
                                                    "utils::Singleton<class Settings>::Singleton",
                                                    "New singleton instance for Settings")));
}

TEST(AutoSingleton, LogsNothingWhenItExists) {
  const Settings settings(3);
  const LogCapture log;

  EXPECT_EQ(Settings::getInstance(), &settings);
  EXPECT_THAT(log.records(), IsEmpty());
}

TEST(AutoSingleton, IsTheOneThatWasConstructedLast) {
  const Settings* before = Settings::getInstance();
  {
    const Settings local(3);
    EXPECT_EQ(Settings::getInstance()->value(), 3);
  }
  EXPECT_EQ(Settings::getInstance(), before);
}

}  // namespace
