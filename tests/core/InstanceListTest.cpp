#include <atomic>
#include <chrono>
#include <future>
#include <gmock/gmock.h>
#include <thread>

#include "core/InstanceList.h"
#include "tests/core/TestInstance.h"
#include "tests/support/VirtualSlots.h"

namespace {

using test::Instance;
using testing::ElementsAre;
using testing::IsEmpty;

class InstanceList : public testing::Test {
 protected:
  Instance* add(const std::string& name) {
    auto* instance = new Instance(name, m_deaths);
    m_list.add(instance);
    return instance;
  }

  int m_deaths = 0;
  core::InstanceList m_list;
};

TEST_F(InstanceList, HasAPlainAndASkippingCursor) {
  Instance* first = add("1");
  Instance* second = add("2");
  Instance* third = add("3");
  second->setDeleted(true);

  EXPECT_THAT(test::walk(m_list.iterator()), ElementsAre(first, second, third));
  EXPECT_THAT(test::walk(m_list.iterator(true)), ElementsAre(first, second, third));
  EXPECT_THAT(test::walk(m_list.iterator(false)), ElementsAre(first, third));
  EXPECT_EQ(m_list.iterator(true).count(), 3U);
  EXPECT_EQ(m_list.iterator(false).count(), 2U);
}

TEST_F(InstanceList, ShowsNothingWhenAllAreDeleted) {
  add("1")->setDeleted(true);
  add("2")->setDeleted(true);

  EXPECT_EQ(m_list.iterator(false).first(), nullptr);
  EXPECT_EQ(m_list.iterator(false).next(), nullptr);
  EXPECT_EQ(m_list.iterator(false).count(), 0U);
  EXPECT_EQ(m_list.iterator().count(), 2U);
}

TEST_F(InstanceList, BeginsAtTheSecondWhenTheFirstIsDeleted) {
  add("1")->setDeleted(true);
  Instance* second = add("2");

  EXPECT_EQ(m_list.iterator(false).first(), second);
  EXPECT_EQ(m_list.iterator(false).next(), second);
}

TEST_F(InstanceList, ReadsTheMarkAfreshInEachStep) {
  Instance* first = add("1");
  Instance* second = add("2");
  Instance* third = add("3");
  core::InstanceList::Iterator cursor = m_list.iterator(false);
  ASSERT_EQ(cursor.first(), first);

  second->setDeleted(true);
  EXPECT_EQ(cursor.next(), third);
  first->setDeleted(true);
  second->setDeleted(false);
  EXPECT_EQ(cursor.first(), second);
}

TEST_F(InstanceList, ClonesTheSkippingCursorToTheBeginning) {
  add("1")->setDeleted(true);
  Instance* second = add("2");
  Instance* third = add("3");
  core::DeletedInstancesSkippingIterator cursor(&m_list);
  ASSERT_EQ(cursor.first(), second);

  const auto clone = cursor.clone();
  EXPECT_EQ(clone->next(), second);
  EXPECT_EQ(cursor.next(), third);
}

TEST_F(InstanceList, DeletesItsInstancesOnceWhenCleared) {
  add("1");
  add("2")->setDeleted(true);
  m_list.clear();
  EXPECT_EQ(m_deaths, 2);
  EXPECT_THAT(test::walk(m_list.iterator()), IsEmpty());

  m_list.clear();
  EXPECT_EQ(m_deaths, 2);
}

TEST_F(InstanceList, IsLockedForACursorOverAllAlone) {
  Instance* const deleted = add("1");
  deleted->setDeleted(true);
  Instance added("2");
  std::future<core::InstanceList::Iterator> all;
  std::future<core::InstanceList::Iterator> visible;
  m_list.add(&added, [&] {
    all = std::async(std::launch::async, [this] { return m_list.iterator(true); });
    visible = std::async(std::launch::async, [this] { return m_list.iterator(false); });
    EXPECT_EQ(visible.wait_for(std::chrono::seconds(30)), std::future_status::ready);
    EXPECT_EQ(all.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
  });

  EXPECT_EQ(all.get().next(), deleted);
  EXPECT_EQ(visible.get().next(), &added);
  m_list.remove(&added);
}

TEST_F(InstanceList, KeepsTheOrderOfItsVirtualOperations) {
  using Iterator = core::InstanceList::Iterator;
  EXPECT_EQ(
      test::slotOf(static_cast<Iterator (core::InstanceList::*)()>(&core::InstanceList::iterator)),
      2U);
  EXPECT_EQ(test::slotOf(
                static_cast<Iterator (core::InstanceList::*)(bool)>(&core::InstanceList::iterator)),
            3U);
  struct Extended : core::InstanceList {
    virtual void extend() {}
  };
  struct ExtendedIterator : Iterator {
    virtual void extend() {}
  };
  EXPECT_EQ(test::slotOf(&Extended::extend), 4U);
  EXPECT_EQ(test::slotOf(&ExtendedIterator::extend), 3U);
}

TEST(InstanceListLife, EndsWithThatOfItsInstances) {
  int deaths = 0;
  {
    core::InstanceList list;
    list.add(new Instance("1", deaths));
    list.add(nullptr);
  }

  EXPECT_EQ(deaths, 1);
}

TEST_F(InstanceList, IsMarkedAndWalkedAtTheSameTime) {
  constexpr int kInstances = 100;
  std::vector<Instance*> instances;
  for (int i = 0; i < kInstances; ++i) {
    instances.push_back(add(std::to_string(i)));
  }
  std::atomic<bool> isDone{false};
  std::thread marker([&] {
    for (Instance* instance : instances) {
      instance->setDeleted(true);
    }
    isDone = true;
  });
  std::size_t last = kInstances;
  bool isFalling = true;
  do {
    const std::size_t now = m_list.iterator(false).count();
    isFalling = isFalling && now <= last;
    last = now;
  } while (!isDone || last != 0);
  marker.join();

  EXPECT_TRUE(isFalling);
}

}  // namespace
