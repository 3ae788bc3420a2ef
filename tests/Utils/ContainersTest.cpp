#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <gmock/gmock.h>
#include <memory>
#include <vector>

#include "Utils/Containers.h"
#include "tests/Utils/RunOnThreads.h"
#include "tests/support/Throws.h"
#include "tests/support/VirtualSlots.h"
#include "tests/support/WaitUntil.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Writes its number down when it is deleted.
class Item {
 public:
  Item(int number, std::vector<int>& deaths) : m_number(number), m_deaths(deaths) {}
  Item(const Item&) = delete;
  Item& operator=(const Item&) = delete;
  virtual ~Item() { m_deaths.push_back(m_number); }

  [[nodiscard]] int number() const { return m_number; }

 private:
  int m_number;
  std::vector<int>& m_deaths;
};

using List = utils::SafeList<Item*>;

using Cursor = List::SimpleIteratorImplementation;

class OddSkippingCursor : public utils::SkippingIteratorImplementation<Item*, OddSkippingCursor> {
 public:
  using SkippingIteratorImplementation::SkippingIteratorImplementation;

  static bool isSkipped(const Item* item) { return item->number() % 2 != 0; }
};

template <class Cursor>
std::vector<int> walk(Cursor& cursor) {
  std::vector<int> numbers;
  for (Item* item = cursor.first(); item != nullptr; item = cursor.next()) {
    numbers.push_back(item->number());
  }
  return numbers;
}

std::vector<int> walk(List& list) {
  List::Iterator cursor = list.iterator();
  return walk(cursor);
}

class SafeList : public testing::Test {
 protected:
  ~SafeList() override {
    for (Item* item : m_kept) {
      delete item;
    }
  }

  // Adds items that the test deletes in the end.
  void fill(std::initializer_list<int> numbers) {
    for (const int number : numbers) {
      m_kept.push_back(new Item(number, m_deaths));
      m_list.add(m_kept.back());
    }
  }

  List m_list{false};
  std::vector<int> m_deaths;
  std::vector<Item*> m_kept;
};

TEST_F(SafeList, HasNothingToWalkWhenEmpty) {
  List::Iterator cursor = m_list.iterator();

  EXPECT_EQ(cursor.first(), nullptr);
  EXPECT_EQ(cursor.next(), nullptr);
  EXPECT_EQ(cursor.count(), 0U);
  EXPECT_EQ(m_list.size(), 0U);
}

TEST_F(SafeList, IsWalkedInTheOrderOfAdding) {
  fill({3, 1, 2});

  EXPECT_THAT(walk(m_list), ElementsAre(3, 1, 2));
  EXPECT_EQ(m_list.iterator().count(), 3U);
  EXPECT_EQ(m_list.size(), 3U);
}

TEST_F(SafeList, IsWalkedByALoopOverItsCursor) {
  fill({3, 1, 2});
  List::Iterator cursor = m_list.iterator();
  static_cast<void>(cursor.next());
  std::vector<int> numbers;
  for (const Item* item : cursor) {
    numbers.push_back(item->number());
  }
  EXPECT_THAT(numbers, ElementsAre(3, 1, 2));

  m_list.clear();
  for (const Item* item : m_list.iterator()) {
    ADD_FAILURE() << item->number();
  }
}

TEST_F(SafeList, BeginsAWalkWithNextOnAFreshCursor) {
  fill({1, 2});
  List::Iterator cursor = m_list.iterator();

  EXPECT_EQ(cursor.next()->number(), 1);
  EXPECT_EQ(cursor.next()->number(), 2);
  EXPECT_EQ(cursor.next(), nullptr);
}

TEST_F(SafeList, RewindsWithFirst) {
  fill({1, 2});
  List::Iterator cursor = m_list.iterator();
  static_cast<void>(walk(cursor));

  EXPECT_THAT(walk(cursor), ElementsAre(1, 2));
}

TEST_F(SafeList, ShowsAWalkWhatIsAddedBeforeItsEnd) {
  fill({1, 2});
  List::Iterator cursor = m_list.iterator();
  ASSERT_EQ(cursor.first()->number(), 1);
  fill({3});

  EXPECT_EQ(cursor.next()->number(), 2);
  EXPECT_EQ(cursor.next()->number(), 3);
  EXPECT_EQ(cursor.next(), nullptr);
}

TEST_F(SafeList, EndsAWalkAtANullElementButCountsIt) {
  fill({2});
  m_list.add(nullptr);
  fill({4});

  EXPECT_THAT(walk(m_list), ElementsAre(2));
  EXPECT_EQ(m_list.iterator().count(), 3U);
  EXPECT_EQ(OddSkippingCursor(&m_list).count(), 1U);
}

TEST_F(SafeList, ForgetsItsElementsWithoutDeletingThem) {
  fill({1, 2});
  m_list.clear();

  EXPECT_EQ(m_list.size(), 0U);
  EXPECT_THAT(m_deaths, IsEmpty());
}

TEST_F(SafeList, LeavesItsElementsAliveWhenItOwnsNone) {
  Item item(1, m_deaths);
  {
    List list(false);
    list.add(&item);
  }

  EXPECT_THAT(m_deaths, IsEmpty());
}

TEST_F(SafeList, DeletesItsElementsInOrderWhenItOwnsThem) {
  List list(true);
  for (const int number : {3, 1, 2}) {
    list.add(new Item(number, m_deaths));
  }
  list.add(nullptr);
  list.clear();

  EXPECT_THAT(m_deaths, ElementsAre(3, 1, 2));
  EXPECT_EQ(list.size(), 0U);
  list.clear();
  EXPECT_THAT(m_deaths, ElementsAre(3, 1, 2));
}

TEST_F(SafeList, DeletesItsElementsAtItsEndWhenItOwnsThem) {
  {
    List list(true);
    list.add(new Item(5, m_deaths));
  }

  EXPECT_THAT(m_deaths, ElementsAre(5));
}

TEST_F(SafeList, TakesAnElementOutWithoutDeletingIt) {
  List list(true);
  auto item = std::make_unique<Item>(1, m_deaths);
  list.add(item.get());

  EXPECT_TRUE(list.remove(item.get()));
  EXPECT_FALSE(list.remove(item.get()));
  EXPECT_EQ(list.size(), 0U);
  EXPECT_THAT(m_deaths, IsEmpty());
}

TEST_F(SafeList, ShowsNobodyAnElementBeforeItIsComplete) {
  Item item(1, m_deaths);
  bool isComplete = false;
  std::future<bool> visit;
  m_list.add(&item, [&] {
    visit = std::async(std::launch::async,
                       [&] { return m_list.iterator().first() == &item && isComplete; });
    visit.wait_for(std::chrono::milliseconds(20));
    isComplete = true;
  });
  EXPECT_TRUE(visit.get());
}

TEST_F(SafeList, DoesNotKeepAnElementThatCannotBeCompleted) {
  Item item(1, m_deaths);
  EXPECT_THROW(m_list.add(&item, [] { throw 1; }), int);
  EXPECT_EQ(m_list.size(), 0u);
}

TEST_F(SafeList, StaysAtTheEndThatAWalkHasReached) {
  List::Iterator ofNothing = m_list.iterator();
  fill({1, 2});
  List::Iterator cursor = m_list.iterator();
  static_cast<void>(cursor.next());
  EXPECT_EQ(cursor.next()->number(), 2);
  fill({3});

  EXPECT_EQ(cursor.next(), nullptr);
  EXPECT_EQ(ofNothing.next(), nullptr);
  EXPECT_THAT(walk(cursor), ElementsAre(1, 2, 3));
}

TEST_F(SafeList, GoesOnWithItsElementWhenOthersAreTakenOut) {
  fill({1, 2, 3, 4, 5});
  List::Iterator cursor = m_list.iterator();
  EXPECT_EQ(cursor.next()->number(), 1);
  EXPECT_EQ(cursor.next()->number(), 2);

  m_list.remove(m_kept[0]);
  m_list.remove(m_kept[1]);
  m_list.remove(m_kept[3]);

  EXPECT_EQ(cursor.next()->number(), 3);
  EXPECT_EQ(cursor.next()->number(), 5);
  EXPECT_EQ(cursor.next(), nullptr);
}

TEST_F(SafeList, PassesOverTheNextElementWhenThatIsTakenOut) {
  fill({1, 2, 3});
  List::Iterator cursor = m_list.iterator();
  static_cast<void>(cursor.next());
  m_list.remove(m_kept[1]);

  EXPECT_EQ(cursor.next()->number(), 3);
  EXPECT_EQ(cursor.next(), nullptr);
}

TEST_F(SafeList, IsWalkedAsAWholeWhenItHasGrown) {
  constexpr int kItems = 1000;
  for (int number = 0; number < kItems; ++number) {
    fill({number});
  }
  const std::vector<int> numbers = walk(m_list);
  ASSERT_EQ(numbers.size(), std::size_t{kItems});
  EXPECT_EQ(numbers.front(), 0);
  EXPECT_EQ(numbers.back(), kItems - 1);
}

TEST_F(SafeList, ClonesACursorToTheBeginning) {
  fill({1, 2});
  List::SimpleIteratorImplementation cursor(&m_list);
  ASSERT_EQ(cursor.first()->number(), 1);

  const auto clone = cursor.clone();

  EXPECT_EQ(clone->next()->number(), 1);
  EXPECT_EQ(cursor.next()->number(), 2);
}

TEST_F(SafeList, CopiesACursorToTheBeginning) {
  fill({1, 2});
  List::Iterator cursor = m_list.iterator();
  static_cast<void>(cursor.first());

  List::Iterator copy(cursor);
  EXPECT_EQ(copy.next()->number(), 1);
  List::Iterator assigned = m_list.iterator();
  static_cast<void>(walk(assigned));
  assigned = cursor;
  EXPECT_EQ(assigned.next()->number(), 1);
  EXPECT_EQ(cursor.next()->number(), 2);
}

TEST_F(SafeList, MovesACursorWithItsPosition) {
  fill({1, 2});
  List::Iterator cursor = m_list.iterator();
  static_cast<void>(cursor.first());

  List::Iterator moved(std::move(cursor));
  EXPECT_EQ(moved.next()->number(), 2);
}

TEST_F(SafeList, CopiesACursorWithItsKind) {
  fill({1, 2, 3, 4});
  List::Iterator cursor(std::make_unique<OddSkippingCursor>(&m_list));

  List::Iterator copy(cursor);

  EXPECT_THAT(walk(copy), ElementsAre(2, 4));
}

TEST(SafeListCursor, WithoutAListIsAtItsEnd) {
  List::SimpleIteratorImplementation cursor(nullptr);
  OddSkippingCursor skipping(nullptr);

  for (List::IteratorImplementation* each :
       std::initializer_list<List::IteratorImplementation*>{&cursor, &skipping}) {
    EXPECT_EQ(each->first(), nullptr);
    EXPECT_EQ(each->next(), nullptr);
    EXPECT_EQ(each->count(), 0U);
    EXPECT_EQ(each->clone()->first(), nullptr);
  }
}

TEST(SafeListIterator, WithoutACursorAssertsInEveryOperation) {
  List::Iterator iterator(nullptr);
  const auto asserts = test::ThrowsExactly<utils::Exception>(
      test::IsAssertion("Utils/Containers", "implementation != NULL"));

  EXPECT_THAT([&] { iterator.first(); }, asserts);
  EXPECT_THAT([&] { iterator.next(); }, asserts);
  EXPECT_THAT([&] { static_cast<void>(iterator.count()); }, asserts);
  List::Iterator copy(iterator);
  EXPECT_THAT([&] { copy.first(); }, asserts);
}

// What another thread can do before this one goes on.
class Meanwhile {
 public:
  bool ends(const std::function<void()>& act) { return endsWithin(test::kDeadline, act); }
  bool isHeldUp(const std::function<void()>& act) {
    return !endsWithin(std::chrono::milliseconds(100), act);
  }

 private:
  bool endsWithin(std::chrono::milliseconds time, const std::function<void()>& act) {
    m_acts.push_back(std::async(std::launch::async, act));
    return m_acts.back().wait_for(time) == std::future_status::ready;
  }

  std::vector<std::future<void>> m_acts;
};

TEST_F(SafeList, IsLockedWhileItMakesACursorButNotByACursorAlone) {
  Meanwhile meanwhile;
  Item item(1, m_deaths);
  m_list.add(&item, [&] {
    EXPECT_TRUE(meanwhile.isHeldUp([this] { static_cast<void>(m_list.iterator()); }));
    EXPECT_TRUE(meanwhile.ends([this] { const OddSkippingCursor cursor(&m_list); }));
  });
}

// Asks the test which elements it passes over.
class AskingCursor : public utils::SkippingIteratorImplementation<Item*, AskingCursor> {
 public:
  using SkippingIteratorImplementation::SkippingIteratorImplementation;

  static bool isSkipped(const Item* item) { return s_ask(item); }

  static inline std::function<bool(const Item*)> s_ask;
};

TEST_F(SafeList, IsLockedForEachStepOfASkippingCursorAlone) {
  fill({1, 3, 4});
  Meanwhile meanwhile;
  bool isFree = true;
  AskingCursor::s_ask = [&](const Item* item) {
    isFree = isFree && meanwhile.ends([this] { static_cast<void>(m_list.size()); });
    return item->number() != 4;
  };
  AskingCursor cursor(&m_list);

  EXPECT_EQ(cursor.first(), m_kept[2]);
  EXPECT_TRUE(isFree);
  AskingCursor::s_ask = nullptr;
}

TEST(SafeListOperations, KeepTheOrderOfTheVirtualOnes) {
  struct Open : Cursor {
    using Cursor::step;
  };
  EXPECT_EQ(test::slotOf(&List::iterator), 2U);
  EXPECT_EQ(test::slotOf(&List::Iterator::first), 0U);
  EXPECT_EQ(test::slotOf(&Cursor::next), 0U);
  EXPECT_EQ(test::slotOf(&Cursor::first), 1U);
  EXPECT_EQ(test::slotOf(&Cursor::count), 2U);
  EXPECT_EQ(test::slotOf(&Cursor::clone), 5U);
  EXPECT_EQ(test::slotOf(&Open::step), 6U);
}

TEST_F(SafeList, IsWalkedPastSkippedElements) {
  fill({1, 2, 3, 5, 6, 7});
  OddSkippingCursor cursor(&m_list);

  EXPECT_THAT(walk(cursor), ElementsAre(2, 6));
  EXPECT_EQ(cursor.count(), 2U);
}

TEST_F(SafeList, CountsPastSkippedElementsWithoutMovingTheCursor) {
  fill({1, 2, 4});
  OddSkippingCursor cursor(&m_list);
  ASSERT_EQ(cursor.first()->number(), 2);

  EXPECT_EQ(cursor.count(), 2U);
  EXPECT_EQ(cursor.next()->number(), 4);
}

TEST_F(SafeList, HasNothingToWalkWhenAllIsSkipped) {
  fill({1, 3});
  OddSkippingCursor cursor(&m_list);

  EXPECT_EQ(cursor.first(), nullptr);
  EXPECT_EQ(cursor.next(), nullptr);
  EXPECT_EQ(cursor.count(), 0U);
  EXPECT_EQ(m_list.iterator().count(), 2U);
}

TEST(SafeListThreads, AddAndWalkAtTheSameTime) {
  constexpr int kWriters = 3;
  constexpr int kThreads = 6;
  constexpr int kItems = 300;
  std::vector<int> deaths;
  std::atomic<int> disorder{0};
  {
    List list(true);
    test::runOnThreads(kThreads, [&](int thread) {
      for (int i = 0; i < kItems / 10; ++i) {
        if (thread < kWriters) {
          for (int k = 0; k < 10; ++k) {
            list.add(new Item(thread * kItems + i * 10 + k, deaths));
          }
          continue;
        }
        // What one writer adds is seen in its order, by every kind of cursor.
        std::vector<int> last(kWriters, -1);
        List::Iterator cursor = thread % 2 == 0
                                    ? list.iterator()
                                    : List::Iterator(std::make_unique<OddSkippingCursor>(&list));
        for (const int number : walk(cursor)) {
          int& before = last.at(static_cast<std::size_t>(number / kItems));
          disorder += number <= before ? 1 : 0;
          before = number;
        }
        disorder += cursor.count() > list.size() ? 1 : 0;
      }
    });
    EXPECT_EQ(list.size(), static_cast<std::size_t>(kWriters * kItems));
    EXPECT_EQ(disorder.load(), 0);
  }

  EXPECT_EQ(deaths.size(), static_cast<std::size_t>(kWriters * kItems));
}

}  // namespace
