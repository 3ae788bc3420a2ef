#include <gmock/gmock.h>
#include <memory>

#include "agent/Orvex_OwningJobElement.h"
#include "tests/agent/AssociationFixture.h"

namespace {

using test::Ends;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kServiceClass = "Orvex_SoftwareInstallationService";
constexpr const char* kOneService = "(int)services.size() == 1";

class OwningJobElement : public test::AssociationFixture {
 protected:
  OwningJobElement()
      : AssociationFixture(std::make_unique<Orvex_OwningJobElementClass>(),
                           {"Orvex_OwningJobElement"}, "OwningElement", "OwnedElement") {}

  std::string m_service = m_siblings.addService();
};

TEST_F(OwningJobElement, IsServedUnderItsName) {
  EXPECT_EQ(m_provider.getName(), "Orvex_OwningJobElement");
}

TEST_F(OwningJobElement, IsMissingWithoutAJob) {
  EXPECT_THAT(enumerate(), IsEmpty());
  expectRecords({"getInstances", "return 0"});
}

TEST_F(OwningJobElement, AsksForTheServiceBeforeTheJobs) {
  EXPECT_THAT(requests(), ElementsAre(kServiceClass, "Orvex_ConcreteJob"));
}

TEST_F(OwningJobElement, ConnectsTheServiceWithEachJobAtEveryEnumeration) {
  const std::string job1 = m_siblings.addJob("0000:03:00.0");
  const std::string job2 = m_siblings.addJob("0000:04:00.0");  // no port is served
  EXPECT_THAT(enumerate(), ElementsAre(Ends(m_service, job1), Ends(m_service, job2)));
  EXPECT_THAT(enumerate(), ElementsAre(Ends(m_service, job1), Ends(m_service, job2)));
  expectRecords({"getInstances", "return 2"});
  m_siblings.clear("Orvex_ConcreteJob");
  EXPECT_THAT(enumerate(), IsEmpty());
}

TEST_F(OwningJobElement, StaysWhenThePortOfTheJobIsGone) {
  m_siblings.addPort("0000:03:00.0");
  m_siblings.addController({"0000:03:00.0"});
  const std::string job = m_siblings.addJob("0000:03:00.0");
  m_siblings.clear("Orvex_EthernetPort");
  EXPECT_THAT(enumerate(), ElementsAre(Ends(m_service, job)));
}

TEST_F(OwningJobElement, HoldsItsReferencesOnly) {
  m_siblings.addJob("0000:03:00.0");
  expectReferencesOnly();
}

TEST_F(OwningJobElement, WantsOneService) {
  const std::string job = m_siblings.addJob("0000:03:00.0");
  m_siblings.addService();
  expectRefusal(kOneService);
  m_siblings.clear(kServiceClass);
  expectRefusal(kOneService);
  m_siblings.addService();
  EXPECT_THAT(enumerate(), ElementsAre(Ends(m_service, job)));
}

TEST_F(OwningJobElement, WantsOneServiceWithoutJobsToo) {
  m_siblings.clear(kServiceClass);
  expectRefusal(kOneService);
}

TEST_F(OwningJobElement, IsGoneAfterARefusal) {
  m_siblings.addJob("0000:03:00.0");
  expectRefusalEmptiesTheList(kOneService);
}

}  // namespace
