#include <gmock/gmock.h>

#include "core/CimPropertyList.h"
#include "core/CimPropertyTypes.h"
#include "tests/core/TestInstance.h"
#include "tests/support/Throws.h"

namespace {

using core::CimPropertyString;
using core::CimPropertyUint16;
using testing::ElementsAre;
using testing::IsEmpty;

class CimPropertyList : public testing::Test {
 protected:
  core::CimPropertyList m_list;
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
  utils::SafeList<core::CimProperty*>& base = m_list;
  EXPECT_TRUE(base.remove(&m_name));

  EXPECT_EQ(m_list.get("Name"), nullptr);
  std::vector<core::CimProperty*> properties;
  m_list.copyTo(properties);
  EXPECT_THAT(properties, ElementsAre(&m_size));
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
  utils::SafeList<core::CimProperty*>& base = m_list;

  EXPECT_THAT(test::walk(base.iterator()), ElementsAre(&later));
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
