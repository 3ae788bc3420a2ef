#include <gtest/gtest.h>
#include <span>

#include "core/CimAgent.h"
#include "core/ClassDescriber.h"
#include "core/ClassTexts.h"

namespace {

constexpr core::ClassText kFans[] = {{"Test_Fan", "Moves air."}, {"Test_Pump", "Moves water."}};
constexpr core::ClassText kOthers[] = {{"test_fan", "Admires."}, {"Test_Lamp", "Shines."}};

class DescribingAgent : public core::CimAgent, public core::ClassDescriber {
 public:
  explicit DescribingAgent(std::span<const core::ClassText> table)
      : CimAgent("Describing"), m_table(table) {}

  void describeClasses(core::ClassTexts& texts) const override { texts.add(m_table); }

 private:
  const std::span<const core::ClassText> m_table;
};

class SilentAgent : public core::CimAgent {
 public:
  SilentAgent() : CimAgent("Silent") {}
};

TEST(ClassTexts, AreFoundInAnyCase) {
  core::ClassTexts texts;
  texts.add(kFans);
  EXPECT_EQ(texts.find("TEST_pump"), &kFans[1]);
  EXPECT_EQ(texts.find("Test_Lamp"), nullptr);
}

TEST(ClassTexts, StayAsTheyWereAddedFirst) {
  core::ClassTexts texts;
  texts.add(kFans);
  texts.add(kOthers);
  EXPECT_EQ(texts.find("Test_Fan"), &kFans[0]);
  EXPECT_EQ(texts.find("Test_Lamp"), &kOthers[1]);
}

TEST(ClassTexts, AreThoseOfTheAgentsThatHaveThem) {
  SilentAgent silent;
  DescribingAgent first(kFans);
  DescribingAgent second(kOthers);
  core::CimBroker broker;
  broker.addAgent(&silent);
  broker.addAgent(&first);
  broker.addAgent(&second);
  const core::ClassTexts texts = core::getClassTexts(broker);
  EXPECT_EQ(texts.find("Test_Fan"), &kFans[0]);
  EXPECT_EQ(texts.find("Test_Lamp"), &kOthers[1]);
}

}  // namespace
