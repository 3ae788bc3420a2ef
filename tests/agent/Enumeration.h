// The associations of a provider, and what an enumeration logs.

#ifndef ORVEX_TESTS_AGENT_ENUMERATION_H_
#define ORVEX_TESTS_AGENT_ENUMERATION_H_

#include <gmock/gmock.h>
#include <string>
#include <utility>
#include <vector>

#include "core/CimBroker.h"
#include "core/CimPropertyRef.h"
#include "tests/support/LogCapture.h"

namespace test {

// The object paths of the two instances that an association connects.
using Ends = std::pair<std::string, std::string>;

// Enumerates. Expects of each association that its path names both ends and nothing else, and that
// the broker finds each end by that.
inline std::vector<Ends> enumerateEnds(core::CimClass& provider, const std::string& first,
                                       const std::string& second) {
  const auto follow = [](core::CimInstance& association, const std::string& name) {
    auto& reference = dynamic_cast<core::CimPropertyRef&>(*association.getProperty(name));
    EXPECT_NE(reference.getTarget(), nullptr);
    const std::string path = reference.toString();
    EXPECT_EQ(core::GetCimBroker().getInstanceByPath(core::CimPath(path)), reference.getTarget());
    return path;
  };
  std::vector<Ends> ends;
  core::InstanceList::Iterator cursor = provider.getInstances();
  for (core::CimInstance* one = cursor.first(); one != nullptr; one = cursor.next()) {
    ends.emplace_back(follow(*one, first), follow(*one, second));
    const core::CimPath path(one->getPath());
    EXPECT_EQ(path.getClassName(), provider.getName());
    EXPECT_THAT(path, testing::UnorderedElementsAre(testing::Pair(first, ends.back().first),
                                                    testing::Pair(second, ends.back().second)));
  }
  return ends;
}

// Expects that one enumeration of the source's class was logged, in a timed block of its function's
// name, with just these messages.
inline void expectEnumeration(const LogCapture& log, const std::string& source,
                              const std::vector<std::string>& messages) {
  const std::string function = source + "Class::getInstances";
  std::vector<std::string> own;
  std::vector<std::string> block;
  for (const LogRecord& record : log.records()) {
    if (record.source == source) {
      EXPECT_EQ(record.function, function);
      EXPECT_EQ(record.level, LogLevel::Debug);
      own.push_back(record.message);
    } else if (record.source == "Debug") {
      block.push_back(record.message);
    }
  }
  EXPECT_EQ(own, messages);
  EXPECT_THAT(block,
              testing::ElementsAre(testing::EndsWith(" Entering '" + function + "'"),
                                   testing::HasSubstr(" Leaving  '" + function + "' after ")));
}

}  // namespace test

#endif  // ORVEX_TESTS_AGENT_ENUMERATION_H_
