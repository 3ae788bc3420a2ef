#include <gmock/gmock.h>
#include <string>

#include "query/ObjectPathComparison.h"

namespace {

using query::isObjectPath;
using query::isSameObject;

TEST(ObjectPathComparison, KnowsPathsOfInstances) {
  EXPECT_TRUE(isObjectPath("A.Id=\"1\""));
  EXPECT_TRUE(isObjectPath("root/x:A.Id=1,Name=\"b\""));
  for (const char* other : {"", "A", "A.Id", "A.", "a text"}) {
    EXPECT_FALSE(isObjectPath(other)) << other;
    EXPECT_FALSE(isSameObject(other, other)) << other;
  }
}

TEST(ObjectPathComparison, ComparesNamesInAnyCaseAndKeysInAnyOrder) {
  EXPECT_TRUE(isSameObject("A.Id=\"1\",Name=\"b\"", "a.NAME=\"b\",id=\"1\""));
  EXPECT_FALSE(isSameObject("A.Id=\"1\"", "B.Id=\"1\""));
  EXPECT_FALSE(isSameObject("A.Id=\"1\"", "A.Id=\"2\""));
  EXPECT_FALSE(isSameObject("A.Id=\"b\"", "A.Id=\"B\""));
  EXPECT_FALSE(isSameObject("A.Id=\"1\"", "A.Id=\"1\",Name=\"b\""));
  EXPECT_FALSE(isSameObject("A.Id=\"1\"", "A.No=\"1\""));
}

TEST(ObjectPathComparison, LeavesNamespacesAndQuotesAside) {
  EXPECT_TRUE(isSameObject("root/x:A.Id=1", "A.Id=\"1\""));
}

TEST(ObjectPathComparison, ComparesReferencesAsObjects) {
  EXPECT_TRUE(isSameObject(R"(L.End="A.Id=\"1\",No=\"2\"")", R"(l.end="a.no=\"2\",id=\"1\"")"));
  EXPECT_FALSE(isSameObject(R"(L.End="A.Id=\"1\"")", R"(L.End="A.Id=\"2\"")"));
}

}  // namespace
