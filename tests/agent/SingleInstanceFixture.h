// The fixture of the tests of providers whose one instance is made by the first enumeration.

#ifndef ORVEX_TESTS_AGENT_SINGLEINSTANCEFIXTURE_H_
#define ORVEX_TESTS_AGENT_SINGLEINSTANCEFIXTURE_H_

#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "core/CimClass.h"
#include "tests/agent/Enumeration.h"
#include "tests/support/LogCapture.h"
#include "tests/support/SourcePlace.h"

namespace test {

class SingleInstanceFixture : public testing::Test {
 protected:
  SingleInstanceFixture(std::unique_ptr<core::CimClass> provider, EnumerationNames names);

  // Returns the one instance that an enumeration yields.
  core::CimInstance& enumerate();

  void expectServedUnder(const std::string& className);
  void expectTheFirstInstanceIsKept();
  void expectRecords();

  PlacedLog m_log;

 private:
  const EnumerationNames m_names;
  const std::unique_ptr<core::CimClass> m_provider;
};

}  // namespace test

#endif  // ORVEX_TESTS_AGENT_SINGLEINSTANCEFIXTURE_H_
