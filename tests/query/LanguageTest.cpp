#include <gmock/gmock.h>

#include "query/Language.h"

namespace {

using query::Language;

TEST(Language, IsFoundByItsNameInAnyCase) {
  EXPECT_EQ(query::findQueryLanguage("WQL"), Language::Wql);
  EXPECT_EQ(query::findQueryLanguage("wql"), Language::Wql);
  EXPECT_EQ(query::findQueryLanguage("DMTF:CQL"), Language::Cql);
  EXPECT_EQ(query::findQueryLanguage("dmtf:cql"), Language::Cql);
}

TEST(Language, IsNoneForAnyOtherName) {
  for (const char* name : {"", "CQL", "SQL", "DMTF:CQL2", " WQL", "DMTF:FQL"}) {
    EXPECT_EQ(query::findQueryLanguage(name), std::nullopt) << name;
  }
}

TEST(Language, OfAFilterIsOneMore) {
  EXPECT_EQ(query::findFilterLanguage("DMTF:FQL"), Language::Fql);
  EXPECT_EQ(query::findFilterLanguage("wql"), Language::Wql);
  EXPECT_EQ(query::findFilterLanguage("DMTF:CQL"), Language::Cql);
  EXPECT_EQ(query::findFilterLanguage("FQL"), std::nullopt);
}

TEST(Language, HasTheNameByWhichClientsKnowIt) {
  EXPECT_EQ(query::getName(Language::Wql), "WQL");
  EXPECT_EQ(query::getName(Language::Cql), "DMTF:CQL");
  EXPECT_EQ(query::getName(Language::Fql), "DMTF:FQL");
}

}  // namespace
