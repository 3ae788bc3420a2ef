#include <gmock/gmock.h>
#include <optional>
#include <string>

#include "client/Queries.h"
#include "tests/query/QueryModel.h"

namespace {

using client::Fault;
using testing::ElementsAre;

struct Refusal {
  std::string text;
  Fault::Kind kind;
};

Refusal refusalOf(const std::string& text, const std::string& language) {
  try {
    static_cast<void>(client::parseQuery(text, language, test::querySchema()));
  } catch (const Fault& fault) {
    return {fault.what(), fault.kind()};
  }
  return {"none", Fault::Kind::Refused};
}

TEST(Queries, AreReadInTheirLanguage) {
  const query::Query query = client::parseQuery("SELECT Name FROM Test_Job WHERE Name LIKE '%'",
                                                "wql", test::querySchema());
  EXPECT_EQ(query.fromClass(), "Test_Job");
  EXPECT_EQ(refusalOf("SELECT * FROM Test_Job WHERE Name LIKE '*'", "WQL").text, "none");
  EXPECT_NE(refusalOf("SELECT * FROM Test_Job WHERE Name LIKE '*'", "DMTF:CQL").text, "none");
}

TEST(Queries, AreRefusedAsWrongUsage) {
  const Refusal wrong = refusalOf("SELEC", "WQL");
  EXPECT_EQ(wrong.text,
            "the query is refused: line 1, column 1: SELECT is expected, and here is SELEC");
  EXPECT_EQ(wrong.kind, Fault::Kind::Usage);
  const Refusal language = refusalOf("SELECT * FROM Test_Job", "SQL");
  EXPECT_EQ(
      language.text,
      "the query is refused: query language 'SQL' is not offered; there are WQL and DMTF:CQL");
  EXPECT_EQ(language.kind, Fault::Kind::Usage);
}

TEST(Queries, AreRefusedByTheSchema) {
  const Refusal unknown = refusalOf("SELECT * FROM Test_Jb", "WQL");
  EXPECT_EQ(unknown.text,
            "the query is refused: line 1, column 15: there is no class 'Test_Jb'; did you mean "
            "Test_Job?");
  EXPECT_EQ(unknown.kind, Fault::Kind::Refused);
}

TEST(Queries, KeepTheSelectedProperties) {
  const auto namesBehind = [](const char* text) {
    client::InstanceSnapshot instance;
    for (const char* name : {"Name", "Count", "Delta"}) {
      instance.properties.push_back({name, client::PropertySnapshot::Kind::Value, {}});
    }
    client::keepSelected(instance, client::parseQuery(text, "WQL", test::querySchema()));
    std::vector<std::string> names;
    for (const client::PropertySnapshot& property : instance.properties) {
      names.push_back(property.name);
    }
    return names;
  };
  EXPECT_THAT(namesBehind("SELECT delta, Name FROM Test_Job"), ElementsAre("Name", "Delta"));
  EXPECT_THAT(namesBehind("SELECT * FROM Test_Job"), ElementsAre("Name", "Count", "Delta"));
}

}  // namespace
