#include <atomic>
#include <gmock/gmock.h>
#include <string>
#include <thread>
#include <vector>

#include "core/PropertyName.h"

namespace {

using core::NameSource;

TEST(PropertyName, IsTheTextThatItIsMadeFrom) {
  std::string text = "Caption";
  const core::PropertyName ofClass(text, NameSource::Class);
  const core::PropertyName fromOutside("X-" + text, NameSource::Outside);
  text = "changed";

  EXPECT_EQ(ofClass.text(), "Caption");
  EXPECT_EQ(ofClass.length(), 7U);
  EXPECT_EQ(fromOutside.text(), "X-Caption");
}

TEST(PropertyName, MayBeEmpty) {
  EXPECT_EQ(core::PropertyName("", NameSource::Class).text(), "");
  EXPECT_EQ(core::PropertyName("", NameSource::Outside).length(), 0U);
}

TEST(PropertyName, OfAClassIsOneTextForAllProperties) {
  const core::PropertyName first("ElementName", NameSource::Class);
  const core::PropertyName second(std::string("ElementName"), NameSource::Class);

  EXPECT_EQ(&first.text(), &second.text());
}

TEST(PropertyName, FromOutsideUsesTheTextOfAClass) {
  const core::PropertyName ofClass("Generation", NameSource::Class);

  EXPECT_EQ(&core::PropertyName("Generation", NameSource::Outside).text(), &ofClass.text());
}

TEST(PropertyName, FromOutsideIsNotKept) {
  const core::PropertyName first("NoClassHasThis", NameSource::Outside);
  const core::PropertyName second("NoClassHasThis", NameSource::Outside);

  EXPECT_NE(&first.text(), &second.text());
  EXPECT_EQ(first, second);
}

TEST(PropertyName, IsComparedByItsText) {
  const core::PropertyName ofClass("Status", NameSource::Class);
  const core::PropertyName sameLength("Stable", NameSource::Class);
  const core::PropertyName otherCase("status", NameSource::Class);
  const core::PropertyName fromOutside("NotOfAnyClass", NameSource::Outside);
  const core::PropertyName later("NotOfAnyClass", NameSource::Class);

  EXPECT_EQ(ofClass, ofClass);
  EXPECT_NE(ofClass, sameLength);
  EXPECT_NE(ofClass, otherCase);
  EXPECT_NE(ofClass, fromOutside);
  EXPECT_EQ(fromOutside, later);
}

TEST(PropertyName, TellsNamesApartThatLookAlike) {
  std::vector<std::string> texts;
  for (char letter = 'a'; letter <= 'z'; ++letter) {
    texts.push_back(std::string("Likeness") + letter + "OfNames");
  }
  for (const std::string& text : texts) {
    EXPECT_EQ(core::PropertyName(text, NameSource::Class).text(), text);
  }
  for (const std::string& text : texts) {
    EXPECT_EQ(core::PropertyName(text, NameSource::Class).text(), text);
  }
}

TEST(PropertyNameThreads, EnterEachNameOnce) {
  constexpr int kThreads = 4;
  constexpr int kNames = 200;
  std::vector<std::vector<const std::string*>> seen(kThreads);
  std::atomic<int> ready{0};
  std::vector<std::thread> threads;
  for (auto& texts : seen) {
    threads.emplace_back([&ready, &texts] {
      ready.fetch_add(1);
      while (ready.load() < kThreads) {
        std::this_thread::yield();
      }
      for (int number = 0; number < kNames; ++number) {
        const std::string text = "Name" + std::to_string(number);
        const core::PropertyName name(text, NameSource::Class);
        texts.push_back(name.text() == text ? &name.text() : nullptr);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }

  for (const auto& texts : seen) {
    EXPECT_EQ(texts, seen.front());
    EXPECT_THAT(texts, testing::Not(testing::Contains(nullptr)));
  }
}

}  // namespace
