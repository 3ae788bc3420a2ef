#include <gmock/gmock.h>

#include "Utils/Exception.h"
#include "cimxml/ObjectName.h"
#include "core/CimPath.h"
#include "tests/cimxml/TestInstances.h"

namespace {

using cimxml::KeyBinding;
using cimxml::ObjectName;
using cimxml::parseObjectPath;
using cimxml::readObjectPath;
using cimxml::toObjectPath;
using Kind = cimxml::KeyBinding::Kind;

// A message may hold a path of its own size: the work grows with its length, not with its square.
constexpr std::size_t kLongPath = 1024U * 1024U;

ObjectName instance(std::vector<KeyBinding> keys) {
  return {"", "", "C", true, std::move(keys)};
}

TEST(ObjectName, ReadsAPath) {
  EXPECT_EQ(parseObjectPath(R"(C.S="v",N=7,T=TRUE,F=false)"),
            instance({{"S", Kind::String, "v", {}},
                      {"N", Kind::Numeric, "7", {}},
                      {"T", Kind::Boolean, "TRUE", {}},
                      {"F", Kind::Boolean, "false", {}}}));
  EXPECT_EQ(parseObjectPath("root/x:C.N=-7"),
            (ObjectName{"", "root/x", "C", true, {{"N", Kind::Numeric, "-7", {}}}}));
}

TEST(ObjectName, ReadsTheNameOfAClass) {
  EXPECT_EQ(parseObjectPath("CIM_Job"), (ObjectName{"", "", "CIM_Job", false, {}}));
  EXPECT_EQ(parseObjectPath("root/x:CIM_Job"), (ObjectName{"", "root/x", "CIM_Job", false, {}}));
}

TEST(ObjectName, IsDescribedByItsPath) {
  const std::string path = R"(C.K="D.L=\"a\\"b\",M=1",N=2)";
  EXPECT_EQ(cimxml::describeObject(parseObjectPath(path)), toObjectPath(parseObjectPath(path)));
  EXPECT_EQ(cimxml::describeObject({"", "", "C", false, {}}), "C");
}

TEST(ObjectName, IsDescribedInShortWhenItsPathIsLong) {
  ObjectName name = instance({{"K", Kind::String, std::string(kLongPath, '"'), {}}});
  const std::string path = toObjectPath(name);
  EXPECT_EQ(cimxml::describeObject(name), path.substr(0, 1024) + "...");
  for (int i = 0; i < 50; ++i) {
    name = instance({{"K", Kind::Reference, "", {name}}});
  }
  EXPECT_EQ(cimxml::describeObject(name).size(), 1027U);
  EXPECT_THAT(cimxml::describeObject(name), testing::StartsWith(R"(C.K="C.K=\"C.K=\\"C.K=)"));
}

TEST(ObjectName, ReadsAQuotedPathAsAReference) {
  EXPECT_EQ(
      parseObjectPath(R"(C.R="root/x:D.K=\"a\"",S="D")"),
      instance(
          {{"R", Kind::Reference, "", {{"", "root/x", "D", true, {{"K", Kind::String, "a", {}}}}}},
           {"S", Kind::String, "D", {}}}));
}

TEST(ObjectName, ReadsReferencesToACertainDepth) {
  ObjectName name = instance({{"K", Kind::String, "end", {}}});
  for (int i = 0; i < 100; ++i) {
    name = instance({{"K", Kind::Reference, "", {name}}});
  }
  const std::string path = toObjectPath(name);
  int depth = 0;
  ObjectName inner = parseObjectPath(path);
  while (inner.keys.at(0).kind == Kind::Reference) {
    inner = ObjectName(inner.keys.at(0).reference.at(0));
    ++depth;
  }
  EXPECT_EQ(depth, 16);
  EXPECT_EQ(inner.keys.at(0).kind, Kind::String);
  EXPECT_EQ(toObjectPath(parseObjectPath(path)), path);
}

TEST(ObjectName, RefusesWhatTheBrokerRefuses) {
  for (const char* path :
       {"", "C.", ".K=1", "C.K", "C.K=", "C.=1", "C.K=1,K=2", "C.K=1,", "C.K=1=2", "C.K.L=1",
        "a:b:C.K=1", "1C.K=1", "C C.K=1", "C.K =1", "C.K=1.5", "x:", "C.K=\"a\"=\"b\""}) {
    EXPECT_THROW(static_cast<void>(parseObjectPath(path)), utils::ESyntaxError) << path;
    EXPECT_FALSE(readObjectPath(path)) << path;
    EXPECT_THROW(core::CimPath{path}, utils::ESyntaxError) << path;
  }
}

TEST(ObjectName, TakesWhatTheBrokerTakes) {
  for (const char* path : {"C.K=x", "C.K=\"", "C.K=\"a", "C.K=a\"b,c\"", ":C.K=1", "C.K=\"a\\\""}) {
    const core::CimPath broker(path);
    const ObjectName name = parseObjectPath(path);
    ASSERT_EQ(name.keys.size(), 1U) << path;
    EXPECT_EQ(name.keys[0].text, broker.at("K")) << path;
  }
}

TEST(ObjectName, ReadsAPathOfVeryManyKeys) {
  std::string path = "C.K0=0";
  std::size_t count = 1;
  for (; path.size() < kLongPath; ++count) {
    path += ",K" + std::to_string(count) + "=" + std::to_string(count);
  }
  const ObjectName name = parseObjectPath(path);
  ASSERT_EQ(name.keys.size(), count);
  EXPECT_EQ(name.keys.back().name, "K" + std::to_string(count - 1));
  EXPECT_EQ(core::CimPath(path).size(), count);
  EXPECT_FALSE(readObjectPath(path + ",K0=1"));
}

TEST(ObjectName, ReadsAKeyOfVeryManyQuotes) {
  const std::string text(kLongPath / 2, '"');
  const ObjectName name = instance({{"K", Kind::String, text, {}}});
  const std::string path = toObjectPath(name);
  EXPECT_TRUE(parseObjectPath(path) == name);
  EXPECT_TRUE(core::CimPath(path).at("K") == text);
}

TEST(ObjectName, WritesThePathOfAnInstance) {
  test::Everything everything;
  everything.Text.setKey();
  everything.Text.setValue("a \"b\", c=d.e:f");
  everything.Short.setKey();
  everything.Short.setValue(7);
  everything.Truth.setKey();
  everything.Truth.setValue(1);
  const ObjectName name{"h",
                        "root/x",
                        "Test_Everything",
                        true,
                        {{"Text", Kind::String, "a \"b\", c=d.e:f", {}},
                         {"Short", Kind::Numeric, "7", {}},
                         {"Truth", Kind::Boolean, "true", {}}}};
  EXPECT_EQ(toObjectPath(name), everything.getPath());
}

TEST(ObjectName, WritesThePathOfAnAssociation) {
  test::Named from("a\"b");
  test::Named to("c");
  test::Link link(&from, &to);
  const auto named = [](const char* name) {
    return ObjectName{"", "root/x", "Test_Named", true, {{"Name", Kind::String, name, {}}}};
  };
  const ObjectName name{
      "",
      "",
      "Test_Link",
      true,
      {{"From", Kind::Reference, "", {named("a\"b")}}, {"To", Kind::Reference, "", {named("c")}}}};
  EXPECT_EQ(toObjectPath(name), link.getPath());
}

TEST(ObjectName, WritesClassesAndInstancesWithoutKeys) {
  EXPECT_EQ(toObjectPath({"h", "root/x", "C", false, {}}), "C");
  EXPECT_EQ(toObjectPath(instance({})), "C.");
}

TEST(ObjectName, QuotesNumbersThatCouldNotStandBare) {
  EXPECT_EQ(toObjectPath(instance({{"K", Kind::Numeric, "0x1F", {}}})), "C.K=0x1F");
  EXPECT_EQ(toObjectPath(instance({{"K", Kind::Numeric, "1.5", {}}})), "C.K=\"1.5\"");
  EXPECT_EQ(toObjectPath(instance({{"K", Kind::Numeric, "", {}}})), "C.K=\"\"");
  EXPECT_EQ(toObjectPath(instance({{"K", Kind::Numeric, "1,L=\"2\"", {}}})), R"(C.K="1,L=\"2\"")");
  EXPECT_EQ(toObjectPath(instance({{"K", Kind::Boolean, "FALSE", {}}})), "C.K=0");
  EXPECT_EQ(toObjectPath(instance({{"K", Kind::Boolean, "maybe", {}}})), "C.K=maybe");
}

TEST(ObjectName, ComesBackFromItsPath) {
  const ObjectName name =
      instance({{"A", Kind::String, " a,b=\"c\".d:e ", {}},
                {"B", Kind::Reference, "", {instance({{"K", Kind::Numeric, "1", {}}})}},
                {"D", Kind::String, "", {}}});
  EXPECT_EQ(parseObjectPath(toObjectPath(name)), name);
}

struct Refusal {
  const char* path;
  const char* text;
};

constexpr Refusal kRefusals[] = {
    {"", "empty path"},
    {"a:b:C.K=1", "model path not found: 'a:b:C.K=1'"},
    {"C.K.L=1", "too many classname separators: 'C.K.L=1'"},
    {"root/x:C.K=1.5", "too many classname separators: 'root/x:C.K=1.5'"},
    {".K=1", "empty class name: '.K=1'"},
    {"root/x:.K=1", "empty class name: 'root/x:.K=1'"},
    {"x:", "too many classname separators: 'x:'"},
    {"1C.K=1", "invalid class name: '1C.K=1'"},
    {"C C.K=1", "invalid class name: 'C C.K=1'"},
    {"C-1", "invalid class name: 'C-1'"},
    {"C.", "no properties: 'C.'"},
    {"root/x:C.", "no properties: 'root/x:C.'"},
    {"C.K", "only one '=' allowed: 'K'"},
    {"C.K=1=2", "only one '=' allowed: 'K=1=2'"},
    {"C.J=1,K=1=2", "only one '=' allowed: 'K=1=2'"},
    {"C.K=1,", "only one '=' allowed: ''"},
    {"C.=1", "invalid property name: '=1'"},
    {"C.K =1", "invalid property name: 'K =1'"},
    {"C.J=1,2K=1", "invalid property name: '2K=1'"},
    {"C.K=", "property value empty: 'K='"},
    {"C.K=,L=1", "property value empty: 'K='"},
    {"C.K=1,K=2", "property already exists: 'K=2'"},
};

class RefusedObjectName : public testing::TestWithParam<Refusal> {};

TEST_P(RefusedObjectName, SaysWhatIsWrongAndWhere) {
  try {
    static_cast<void>(parseObjectPath(GetParam().path));
    FAIL() << GetParam().path;
  } catch (const utils::ESyntaxError& error) {
    EXPECT_STREQ(error.what(), utils::ESyntaxError(GetParam().text).what());
  }
  EXPECT_FALSE(readObjectPath(GetParam().path));
}

INSTANTIATE_TEST_SUITE_P(, RefusedObjectName, testing::ValuesIn(kRefusals));

}  // namespace
