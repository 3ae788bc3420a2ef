#include <gtest/gtest.h>

#include "cli/TargetName.h"

namespace {

using client::TargetKind;

void expectParsed(const std::string& text, TargetKind kind, const std::string& canonical) {
  const client::TargetName name = cli::parseTarget(text);
  EXPECT_EQ(static_cast<int>(name.kind), static_cast<int>(kind)) << text;
  EXPECT_EQ(name.text, canonical);
  EXPECT_EQ(name.given, text);
}

TEST(TargetName, ReadsIdentifiersAndPaths) {
  expectParsed("0000:0a:00.1", TargetKind::Port, "0000:0a:00.1");
  expectParsed("0000:0A:00.1", TargetKind::Port, "0000:0a:00.1");
  expectParsed("0000:0A:00", TargetKind::Adapter, "0000:0a:00");
  expectParsed("C.K=\"v\"", TargetKind::ObjectPath, "C.K=\"v\"");
  expectParsed("nonsense", TargetKind::Unknown, "nonsense");
  expectParsed("0000:0a:00.9", TargetKind::Unknown, "0000:0a:00.9");
  expectParsed("", TargetKind::Unknown, "");
}

}  // namespace
