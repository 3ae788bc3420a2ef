#include <gmock/gmock.h>

#include "Utils/Exception.h"
#include "core/CimPropertyTypes.h"
#include "core/OwningPropertyList.h"
#include "tests/support/Throws.h"

namespace {

using core::OwningPropertyList;

// A property that tells of its end.
class Mortal : public core::CimPropertyString {
 public:
  Mortal(const char* name, int& deaths) : CimPropertyString(name, nullptr), m_deaths(deaths) {}
  Mortal(const Mortal&) = delete;
  Mortal& operator=(const Mortal&) = delete;
  ~Mortal() override { ++m_deaths; }

 private:
  int& m_deaths;
};

TEST(OwningPropertyList, HandsOutAListOfWhatWasAdded) {
  OwningPropertyList properties;
  auto& size = properties.add<core::CimPropertyUint16>("Size");
  auto added = std::make_unique<core::CimPropertyString>("Name", nullptr);
  const core::CimProperty* name = added.get();
  properties.add(std::move(added));

  EXPECT_TRUE(size.isNull());
  EXPECT_EQ(properties.list().get("Size"), &size);
  EXPECT_EQ(properties.list().get("Name"), name);
  EXPECT_EQ(properties.list().size(), 2U);
}

TEST(OwningPropertyList, DeletesItsPropertiesWithItself) {
  int deaths = 0;
  {
    OwningPropertyList properties;
    properties.add(std::make_unique<Mortal>("First", deaths));
    properties.add(std::make_unique<Mortal>("Second", deaths));
    EXPECT_EQ(deaths, 0);
  }
  EXPECT_EQ(deaths, 2);
}

TEST(OwningPropertyList, KeepsAPropertyThatIsOverridden) {
  int deaths = 0;
  OwningPropertyList properties;
  properties.add(std::make_unique<Mortal>("Name", deaths));
  const auto& second = properties.add<core::CimPropertyString>("Name");

  EXPECT_EQ(deaths, 0);
  EXPECT_EQ(properties.list().get("Name"), &second);
}

TEST(OwningPropertyList, RefusesNull) {
  OwningPropertyList properties;
  EXPECT_THAT([&] { properties.add(nullptr); },
              test::ThrowsExactly<utils::Exception>(
                  test::IsAssertion("CimPropertyList", "newProperty != NULL")));
  EXPECT_EQ(properties.list().size(), 0U);
}

}  // namespace
