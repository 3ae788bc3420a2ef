#include <gmock/gmock.h>

#include "query/Parser.h"
#include "query/PropertyBinding.h"
#include "tests/query/QueryModel.h"

namespace {

using query::Chain;
using query::ClassName;
using query::PropertyBinding;
using query::PropertyType;
using query::Sort;

// Returns the property in "SELECT * FROM ... WHERE property = 1", bound to a class.
struct Bound {
  Chain chain;
  PropertyType type;
};

Bound bind(const std::string& property, const std::string& className = "Test_Thing",
           const std::string& alias = "") {
  const std::string text = property + " = 1";
  query::Statement statement = query::parseStatement(text, query::Language::Fql);
  ClassName from{className, 0};
  const PropertyBinding binding(text, test::querySchema(), from, alias);
  Bound bound{statement.where->operands.front().chain, {}};
  bound.type = binding.bind(bound.chain);
  return bound;
}

std::string faultOf(const std::string& property, const std::string& className = "Test_Thing") {
  return test::faultOf([&] { static_cast<void>(bind(property, className)); });
}

TEST(PropertyBinding, KnowsTheSortOfEachProperty) {
  EXPECT_EQ(bind("Name").type.sort, Sort::Text);
  EXPECT_EQ(bind("Count").type.sort, Sort::Number);
  EXPECT_EQ(bind("Delta").type.name, "sint8");
  EXPECT_EQ(bind("IsGood").type.sort, Sort::Boolean);
  EXPECT_EQ(bind("Since").type.sort, Sort::Datetime);
  EXPECT_EQ(bind("Peer").type.sort, Sort::Reference);
  EXPECT_TRUE(bind("States").type.isArray);
  EXPECT_TRUE(bind("Roles[*]").type.isArray);
  EXPECT_FALSE(bind("Roles[1]").type.isArray);
  EXPECT_EQ(bind("Roles[1]").type.sort, Sort::Text);
}

TEST(PropertyBinding, GivesNamesTheirSpelling) {
  EXPECT_EQ(bind("name").chain.written(), "Name");
  EXPECT_EQ(bind("test_job::PERCENTCOMPLETE").chain.written(), "Test_Job::PercentComplete");
  EXPECT_EQ(bind("sourceinstance.percentcomplete", "Test_Modification").chain.written(),
            "SourceInstance.PercentComplete");
}

TEST(PropertyBinding, DropsTheNameOfTheClass) {
  EXPECT_EQ(bind("TEST_THING.Name").chain.written(), "Name");
  EXPECT_EQ(bind("t.Name", "Test_Thing", "T").chain.written(), "Name");
  const Bound itself = bind("Test_Thing");
  EXPECT_EQ(itself.chain.written(), "");
  EXPECT_EQ(itself.type.sort, Sort::Instance);
}

TEST(PropertyBinding, RefusesClassesThatThereAreNot) {
  EXPECT_EQ(faultOf("Name", "Test_Thng"),
            "line 1, column 1: there is no class 'Test_Thng'; did you mean Test_Thing?");
  EXPECT_EQ(faultOf("Test_Jb::Name"),
            "line 1, column 1: there is no class 'Test_Jb'; did you mean Test_Job?");
}

TEST(PropertyBinding, RefusesPropertiesThatThereAreNot) {
  EXPECT_EQ(faultOf("Test_Thing.Nmae"),
            "line 1, column 12: class Test_Thing has no property 'Nmae'; did you mean Name?");
  EXPECT_EQ(faultOf("Xylophone"), "line 1, column 1: class Test_Thing has no property 'Xylophone'");
  EXPECT_EQ(
      faultOf("PercentComplete"),
      "line 1, column 1: class Test_Thing has no property 'PercentComplete'; Test_Job has it: "
      "write Test_Job::PercentComplete");
  EXPECT_EQ(faultOf("SourceInstance.PercentComplet", "Test_Modification"),
            "line 1, column 16: no class has a property 'PercentComplet'; did you mean "
            "PercentComplete?");
  EXPECT_EQ(faultOf("SourceInstance.Test_Thing::PercentComplete", "Test_Modification"),
            "line 1, column 28: class Test_Thing has no property 'PercentComplete'");
}

TEST(PropertyBinding, RefusesClassesThatTheInstanceCannotBeOf) {
  EXPECT_EQ(faultOf("Test_Modification::SourceInstance"),
            "line 1, column 1: no Test_Thing is a Test_Modification: neither class is above the "
            "other");
  EXPECT_EQ(bind("Test_Thing::Name", "Test_Job").chain.written(), "Test_Thing::Name");
}

TEST(PropertyBinding, LooksIntoInstancesAlone) {
  EXPECT_EQ(faultOf("Count.Name"),
            "line 1, column 7: what stands before 'Name' is of type uint64 and holds no instance");
  EXPECT_EQ(faultOf("Roles.Name"),
            "line 1, column 7: what stands before 'Name' is an array of string and holds no "
            "instance");
  EXPECT_EQ(faultOf("Name[0]"),
            "line 1, column 1: Name[0]: there are no elements, since it is no array");
}

TEST(PropertyBinding, KnowsNoSortWhereTheClassShowsLater) {
  EXPECT_EQ(bind("SourceInstance.Count", "Test_Modification").type.sort, Sort::Unknown);
  EXPECT_EQ(bind("SourceInstance.Test_Thing::Count", "Test_Modification").type.sort, Sort::Number);
  EXPECT_EQ(bind("Count", "").type.sort, Sort::Unknown);
}

}  // namespace
