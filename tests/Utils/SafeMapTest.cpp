// The maps of Utils/Containers.h.

#include <atomic>
#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <type_traits>

#include "Utils/Containers.h"
#include "tests/Utils/RunOnThreads.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(SafeMap, KnowsWhatItHolds) {
  utils::SafeMap<std::string, int*> map;
  int value = 1;
  map.set("a", &value);

  EXPECT_TRUE(map.contains("a"));
  EXPECT_FALSE(map.contains("A"));
  EXPECT_FALSE(map.contains(""));
  EXPECT_EQ(map.get("a"), &value);
}

TEST(SafeMap, EntersNullForAnAbsentKeyThatIsFetched) {
  utils::SafeMap<std::string, int*> map;

  EXPECT_EQ(map.get("absent"), nullptr);
  EXPECT_TRUE(map.contains("absent"));
  EXPECT_THAT(map.values(), ElementsAre(nullptr));
}

TEST(SafeMap, StoresThroughAFetchedReference) {
  utils::SafeMap<std::string, int> map;
  map.get("a") = 7;

  EXPECT_EQ(map.get("a"), 7);
}

TEST(SafeMap, ReplacesAnEarlierValue) {
  utils::SafeMap<std::string, int> map;
  map.set("a", 1);
  map.set("a", 2);

  EXPECT_THAT(map.values(), ElementsAre(2));
}

TEST(SafeMap, GivesItsValuesInKeyOrder) {
  utils::SafeMap<std::string, int> map;
  map.set("b", 2);
  map.set("a", 1);
  map.set("B", 3);

  EXPECT_THAT(map.values(), ElementsAre(3, 1, 2));
  EXPECT_THAT((utils::SafeMap<std::string, int>().values()), IsEmpty());
}

TEST(SafeMap, LeavesItsValuesAlive) {
  const auto value = std::make_shared<int>(1);
  const std::shared_ptr<int> other = value;
  {
    utils::SafeMap<std::string, const std::shared_ptr<int>*> map;
    map.set("a", &other);
  }

  EXPECT_EQ(value.use_count(), 2);
}

TEST(SafeMapThreads, StoreAndLookUpAtTheSameTime) {
  constexpr int kThreads = 6;
  constexpr int kKeys = 200;
  utils::SafeMap<std::string, int> map;
  std::atomic<int> wrong{0};

  test::runOnThreads(kThreads, [&](int thread) {
    for (int i = 0; i < kKeys; ++i) {
      const std::string key = std::to_string(thread) + "." + std::to_string(i);
      map.set(key, i);
      wrong += map.contains(key) && map.get(key) == i ? 0 : 1;
      wrong += map.values().size() >= static_cast<std::size_t>(i) + 1 ? 0 : 1;
    }
  });

  EXPECT_EQ(wrong.load(), 0);
  EXPECT_EQ(map.values().size(), static_cast<std::size_t>(kThreads * kKeys));
}

TEST(Map, IsAnOrderedMapWithAVirtualDestructor) {
  utils::Map<std::string, std::string> map;
  map["b"] = "2";
  map["a"] = "1";
  const utils::Map<std::string, std::string> copy(map);

  EXPECT_EQ(copy.begin()->first, "a");
  EXPECT_EQ(copy, map);
  EXPECT_TRUE((std::has_virtual_destructor_v<utils::Map<std::string, std::string>>));
}

}  // namespace
