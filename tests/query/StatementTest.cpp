#include <gmock/gmock.h>

#include "query/Statement.h"

namespace {

using query::Chain;
using query::ClassName;
using query::Indexing;

TEST(Chain, IsWrittenAsInAQuery) {
  Chain chain;
  chain.steps = {{std::nullopt, "SourceInstance"}, {ClassName{"CIM_Job", 0}, "States"}};
  EXPECT_EQ(chain.written(), "SourceInstance.CIM_Job::States");
  chain.indexing = Indexing::All;
  EXPECT_EQ(chain.written(), "SourceInstance.CIM_Job::States[*]");
  chain.indexing = Indexing::Element;
  chain.index = 3;
  EXPECT_EQ(chain.written(), "SourceInstance.CIM_Job::States[3]");
}

}  // namespace
