#include <chrono>
#include <future>
#include <gmock/gmock.h>
#include <vector>

#include "Utils/Log.h"
#include "core/CimPropertyList.h"
#include "core/CimPropertyTypes.h"
#include "tests/core/TestInstance.h"
#include "tests/support/Throws.h"
#include "tests/support/VirtualSlots.h"
#include "tests/support/WaitUntil.h"

namespace {

using core::CimPropertyString;
using core::CimPropertyUint16;
using testing::ElementsAre;
using testing::IsEmpty;

// A list whose index the test may write to.
class OpenList : public core::CimPropertyList {
 public:
  using core::CimPropertyList::index;
};

class CimPropertyList : public testing::Test {
 protected:
  std::vector<core::CimProperty*> copy() {
    std::vector<core::CimProperty*> properties{nullptr};
    m_list.copyTo(properties);
    return properties;
  }

  OpenList m_list;
  utils::SafeList<core::CimProperty*>& m_base = m_list;
  CimPropertyString m_name{"Name", nullptr};
  CimPropertyUint16 m_size{"Size", nullptr};
};

TEST_F(CimPropertyList, IsWalkedInTheOrderOfAdding) {
  m_list.add(&m_size);
  m_list.add(&m_name);

  EXPECT_THAT(test::walk(m_list.iterator()), ElementsAre(&m_size, &m_name));
  EXPECT_EQ(m_list.iterator().count(), 2U);
}

TEST_F(CimPropertyList, IsEmptyAtFirst) {
  EXPECT_THAT(test::walk(m_list.iterator()), IsEmpty());
  EXPECT_EQ(m_list.iterator().count(), 0U);
  EXPECT_EQ(m_list.get("Name"), nullptr);
}

TEST_F(CimPropertyList, FindsByName) {
  m_list.add(&m_name);

  EXPECT_EQ(m_list.get("Name"), &m_name);
  EXPECT_EQ(m_list.get("name"), nullptr);
}

TEST_F(CimPropertyList, EntersNothingForANameThatIsAskedFor) {
  EXPECT_EQ(m_list.get("Name"), nullptr);

  // An entry without a property would be refused here.
  EXPECT_NO_THROW(m_list.add(&m_name));
  EXPECT_FALSE(m_name.isOverridden());
  EXPECT_EQ(m_list.get("Name"), &m_name);
}

TEST_F(CimPropertyList, OverridesAPropertyByALaterOneAtTheEnd) {
  CimPropertyString later("Name", nullptr);
  m_list.add(&m_name);
  m_list.add(&m_size);
  m_list.add(&later);

  EXPECT_EQ(m_list.get("Name"), &later);
  EXPECT_TRUE(m_name.isOverridden());
  EXPECT_FALSE(later.isOverridden());
  EXPECT_THAT(test::walk(m_list.iterator()), ElementsAre(&m_size, &later));
  EXPECT_EQ(m_list.iterator().count(), 2U);
  EXPECT_EQ(m_list.size(), 3U);
}

TEST_F(CimPropertyList, FlagsTwoOfThreePropertiesOfOneName) {
  CimPropertyString second("Name", nullptr);
  CimPropertyUint16 third("Name", nullptr);
  m_list.add(&m_name);
  m_list.add(&second);
  m_list.add(&third);

  EXPECT_TRUE(m_name.isOverridden());
  EXPECT_TRUE(second.isOverridden());
  EXPECT_FALSE(third.isOverridden());
  EXPECT_THAT(test::walk(m_list.iterator()), ElementsAre(&third));
}

TEST_F(CimPropertyList, CopiesThePropertiesInForce) {
  CimPropertyString later("Name", nullptr);
  m_list.add(&m_name);
  m_list.add(&m_size);
  std::vector<core::CimProperty*> properties;
  m_list.copyTo(properties);
  EXPECT_THAT(properties, ElementsAre(&m_name, &m_size));

  m_list.add(&later);
  m_list.copyTo(properties);
  EXPECT_THAT(properties, ElementsAre(&m_size, &later));
}

TEST_F(CimPropertyList, FindsNothingMoreWhenItIsCleared) {
  m_list.add(&m_name);
  m_list.clear();
  EXPECT_EQ(m_list.get("Name"), nullptr);

  m_list.add(&m_name);
  EXPECT_FALSE(m_name.isOverridden());
  EXPECT_EQ(m_list.get("Name"), &m_name);
}

TEST_F(CimPropertyList, FindsNothingThatIsTakenOut) {
  m_list.add(&m_name);
  m_list.add(&m_size);
  EXPECT_TRUE(m_list.remove(&m_name));
  EXPECT_FALSE(m_list.remove(&m_name));

  EXPECT_EQ(m_list.get("Name"), nullptr);
  EXPECT_THAT(test::walk(m_list.iterator()), ElementsAre(&m_size));
  EXPECT_THAT(copy(), ElementsAre(&m_size));
}

TEST_F(CimPropertyList, CopiesWhatAWalkGivesWhenItIsChangedThroughItsBase) {
  m_list.add(&m_name);
  m_base.add(&m_size);
  EXPECT_THAT(test::walk(m_list.iterator()), ElementsAre(&m_name, &m_size));
  EXPECT_THAT(copy(), ElementsAre(&m_name, &m_size));

  m_base.remove(&m_name);
  EXPECT_THAT(copy(), ElementsAre(&m_size));
  CimPropertyString later("Later", nullptr);
  m_base.add(&later);
  EXPECT_THAT(copy(), ElementsAre(&m_size, &later));
  m_base.clear();
  EXPECT_THAT(copy(), IsEmpty());
}

TEST_F(CimPropertyList, DoesNotNameWhatIsAddedThroughItsBase) {
  CimPropertyString later("Name", nullptr);
  m_list.add(&m_name);
  m_base.add(&later);

  EXPECT_EQ(m_list.get("Name"), &m_name);
  EXPECT_FALSE(m_name.isOverridden());
  EXPECT_THAT(copy(), ElementsAre(&m_name, &later));
}

TEST_F(CimPropertyList, FindsByNameWhileTheListItselfIsLocked) {
  m_list.add(&m_name);
  std::future<core::CimProperty*> found;
  m_base.add(&m_size, [&] {
    found = std::async(std::launch::async, [this] { return m_list.get("Name"); });
    EXPECT_EQ(found.wait_for(std::chrono::seconds(30)), std::future_status::ready);
  });
  EXPECT_EQ(found.get(), &m_name);
}

TEST_F(CimPropertyList, RefusesANameUnderWhichThereIsNull) {
  m_list.add(&m_size);
  m_list.index().set(m_name, nullptr);
  CimPropertyString later("Name", nullptr);

  EXPECT_THAT([&] { m_list.add(&later); }, test::ThrowsExactly<utils::Exception>(test::IsAssertion(
                                               "CimPropertyList", "overridenProperty != NULL")));
  EXPECT_EQ(m_list.get("Name"), nullptr);
  EXPECT_THAT(copy(), ElementsAre(&m_size));
  EXPECT_EQ(m_list.size(), 1U);
}

// Asks for the number of a list's properties on another thread when an error is recorded.
class CountingSinks final : private utils::LogSinks {
 public:
  explicit CountingSinks(core::CimPropertyList& list)
      : m_list(list), m_previous(utils::exchangeLogSinks(this)) {}
  ~CountingSinks() override { utils::exchangeLogSinks(m_previous); }

  // Returns whether there was an error, and the number at once.
  [[nodiscard]] bool isAnswered() const { return m_isAnswered; }

 private:
  void writeEventLog(const std::string& /*line*/) noexcept override {
    m_answer = std::async(std::launch::async, [this] { return m_list.size(); });
    m_isAnswered = m_answer.wait_for(test::kDeadline) == std::future_status::ready;
  }
  void writeDebugChannel(const std::string& /*line*/) noexcept override {}
  void writeStandardError(const std::string& /*text*/) noexcept override {}

  core::CimPropertyList& m_list;
  bool m_isAnswered = false;
  std::future<std::size_t> m_answer;
  utils::LogSinks* const m_previous;
};

// What is wrong with a name is told while the names are locked.
TEST_F(CimPropertyList, IsNotLockedWhileItsNamesAre) {
  m_list.index().set(m_name, nullptr);
  CimPropertyString later("Name", nullptr);
  const CountingSinks sinks(m_list);
  EXPECT_THROW(m_list.add(&later), utils::Exception);
  EXPECT_TRUE(sinks.isAnswered());
}

TEST_F(CimPropertyList, KeepsTheOrderOfItsVirtualOperations) {
  struct Extended : core::CimPropertyList {
    virtual void extend() {}
  };
  EXPECT_EQ(test::slotOf(&core::CimPropertyList::iterator), 2U);
  EXPECT_EQ(test::slotOf(&Extended::extend), 3U);
}

TEST_F(CimPropertyList, CopiesNoPropertyThatSomebodyMarkedOverridden) {
  m_list.add(&m_name);
  m_list.add(&m_size);
  m_name.setOverridden();
  std::vector<core::CimProperty*> properties;
  m_list.copyTo(properties);

  EXPECT_THAT(properties, ElementsAre(&m_size));
}

TEST_F(CimPropertyList, RefusesNull) {
  EXPECT_THAT([&] { m_list.add(nullptr); }, test::ThrowsExactly<utils::Exception>(test::IsAssertion(
                                                "CimPropertyList", "newProperty != NULL")));
  EXPECT_EQ(m_list.size(), 0U);
}

TEST_F(CimPropertyList, ClonesItsCursorToTheBeginning) {
  CimPropertyString later("Name", nullptr);
  m_list.add(&m_name);
  m_list.add(&m_size);
  m_list.add(&later);
  core::OverridenPropertiesSkippingIterator cursor(&m_list);
  ASSERT_EQ(cursor.first(), &m_size);

  EXPECT_EQ(cursor.clone()->next(), &m_size);
  EXPECT_EQ(cursor.next(), &later);
}

TEST_F(CimPropertyList, SkipsThroughTheBaseListToo) {
  CimPropertyString later("Name", nullptr);
  m_list.add(&m_name);
  m_list.add(&later);

  EXPECT_THAT(test::walk(m_base.iterator()), ElementsAre(&later));
}

TEST_F(CimPropertyList, DeletesNoneOfItsProperties) {
  {
    core::CimPropertyList list;
    list.add(&m_name);
    list.clear();
    list.add(&m_size);
  }

  EXPECT_EQ(m_name.getName(), "Name");
  EXPECT_EQ(m_size.getName(), "Size");
}

}  // namespace
