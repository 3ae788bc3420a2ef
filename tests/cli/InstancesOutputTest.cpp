#include <gmock/gmock.h>
#include <sstream>

#include "cli/InstancesOutput.h"

namespace {

using client::NullProperties;
using Kind = client::PropertySnapshot::Kind;

class InstancesOutput : public testing::Test {
 protected:
  std::string printed(const client::Instances& instances, NullProperties nulls, bool isJson) {
    std::ostringstream out;
    std::ostringstream err;
    cli::Context context{out, err, {}, {}};
    context.options.isJson = isJson;
    cli::printInstances(context, instances, nulls, "there is none\x1b");
    EXPECT_EQ(err.str(), "");
    return out.str();
  }

  const client::Instances m_two = {
      {"A", "A.Id=\"1\"", {{"Id", Kind::Value, client::Value("1")}, {"No", Kind::Value, {}}}},
      {"A", "A.Id=\"2\"", {{"Id", Kind::Value, client::Value("2")}}}};
};

TEST_F(InstancesOutput, HasAParagraphForEach) {
  EXPECT_EQ(printed(m_two, NullProperties::Left, false),
            "A.Id=\"1\"\n  Id = \"1\"\n\nA.Id=\"2\"\n  Id = \"2\"\n");
  EXPECT_EQ(printed({m_two[0]}, NullProperties::Shown, false),
            "A.Id=\"1\"\n  Id = \"1\"\n  No = NULL\n");
}

TEST_F(InstancesOutput, SaysWhenThereIsNone) {
  EXPECT_EQ(printed({}, NullProperties::Left, false), "there is none\\x1b\n");
  EXPECT_EQ(printed({}, NullProperties::Left, true), "[]\n");
}

TEST_F(InstancesOutput, IsADocumentForPrograms) {
  EXPECT_EQ(printed({m_two[1]}, NullProperties::Left, true),
            "[\n  {\n    \"path\": \"A.Id=\\\"2\\\"\",\n    \"properties\": {\n"
            "      \"Id\": \"2\"\n    }\n  }\n]\n");
}

}  // namespace
