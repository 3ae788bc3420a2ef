// The fixture of the tests of providers of associations.

#ifndef ORVEX_TESTS_AGENT_ASSOCIATIONFIXTURE_H_
#define ORVEX_TESTS_AGENT_ASSOCIATIONFIXTURE_H_

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "core/CimClass.h"
#include "tests/agent/Enumeration.h"
#include "tests/agent/FakeMidApi.h"
#include "tests/agent/FakeSiblings.h"
#include "tests/support/LogCapture.h"
#include "tests/support/SourcePlace.h"

namespace test {

class AssociationFixture : public testing::Test {
 protected:
  // `first` and `second` are the names of the two references that the associations have.
  AssociationFixture(std::unique_ptr<core::CimClass> provider, EnumerationNames names,
                     std::string first, std::string second);

  std::vector<Ends> enumerate();
  std::vector<Targets> enumerateTargets();

  // Returns the classes that an enumeration asks for.
  std::vector<std::string> requests();

  // Of the last enumeration.
  void expectRecords(const std::vector<std::string>& messages) const;

  // Expects of each association that it holds its two references and nothing else.
  void expectReferencesOnly();

  // Expects that an enumeration fails by this assertion.
  void expectRefusal(const std::string& condition);

  // Expects that an enumeration that is refused leaves nothing of the one before.
  void expectRefusalEmptiesTheList(const std::string& condition);

  PlacedLog m_log;
  FakeMidApi m_midApi;
  FakeSiblings m_siblings;

 private:
  const EnumerationNames m_names;
  const std::string m_first;
  const std::string m_second;
  const std::unique_ptr<core::CimClass> m_ownedProvider;

 protected:
  core::CimClass& m_provider = *m_ownedProvider;
};

}  // namespace test

#endif  // ORVEX_TESTS_AGENT_ASSOCIATIONFIXTURE_H_
