#include <gmock/gmock.h>
#include <memory>

#include "agent/Orvex_AffectedJobElement.h"
#include "tests/agent/AssociationFixture.h"

namespace {

using test::Ends;
using testing::ElementsAre;
using testing::IsEmpty;

class AffectedJobElement : public test::AssociationFixture {
 protected:
  AffectedJobElement()
      : AssociationFixture(std::make_unique<Orvex_AffectedJobElementClass>(),
                           {"Orvex_AffectedJobElement"}, "AffectedElement", "AffectingElement") {}

  // Serves an adapter with one port and a job for that.
  void serveJob() {
    m_siblings.addPort("0000:03:00.0");
    m_siblings.addController({"0000:03:00.0"});
    m_siblings.addJob("0000:03:00.0");
  }
};

TEST_F(AffectedJobElement, IsServedUnderItsName) {
  EXPECT_EQ(m_provider.getName(), "Orvex_AffectedJobElement");
}

TEST_F(AffectedJobElement, IsMissingWithoutAJob) {
  m_siblings.addPort("0000:03:00.0");
  m_siblings.addController({"0000:03:00.0"});
  EXPECT_THAT(enumerate(), IsEmpty());
  expectRecords({"getInstances", "return 0"});
}

TEST_F(AffectedJobElement, AsksForPortsOnceForTheJobsAndOnceForTheControllers) {
  EXPECT_THAT(requests(), ElementsAre("Orvex_ConcreteJob", "Orvex_EthernetPort",
                                      "Orvex_EthernetPort", "Orvex_PortController"));
}

TEST_F(AffectedJobElement, ConnectsAJobWithTheWholeAdapterAtEveryEnumeration) {
  m_siblings.addPort("0000:02:00.0");
  const std::string port1 = m_siblings.addPort("0000:03:00.0");
  const std::string port2 = m_siblings.addPort("0000:03:00.1");
  m_siblings.addController({"0000:02:00.0"});
  const std::string adapter = m_siblings.addController({"0000:03:00.1", "0000:03:00.0"});
  const std::string job = m_siblings.addJob("0000:03:00.0");
  const auto all = ElementsAre(Ends(adapter, job), Ends(port1, job), Ends(port2, job));
  EXPECT_THAT(enumerate(), all);
  EXPECT_THAT(enumerate(), all);
  expectRecords({"getInstances", "return 3"});
}

TEST_F(AffectedJobElement, HoldsItsReferencesOnly) {
  serveJob();
  expectReferencesOnly();
}

TEST_F(AffectedJobElement, ListsJobByJob) {
  const std::string port = m_siblings.addPort("0000:03:00.0");
  const std::string otherPort = m_siblings.addPort("0000:04:00.0");
  const std::string adapter = m_siblings.addController({"0000:03:00.0"});
  const std::string otherAdapter = m_siblings.addController({"0000:04:00.0"});
  const std::string job1 = m_siblings.addJob("0000:04:00.0");
  const std::string job2 = m_siblings.addJob("0000:03:00.0");
  const std::string job3 = m_siblings.addJob("0000:04:00.0");
  EXPECT_THAT(enumerate(),
              ElementsAre(Ends(otherAdapter, job1), Ends(otherPort, job1), Ends(adapter, job2),
                          Ends(port, job2), Ends(otherAdapter, job3), Ends(otherPort, job3)));
}

TEST_F(AffectedJobElement, TakesTheFirstOwnerOfThePort) {
  const std::string port = m_siblings.addPort("0000:03:00.0");
  m_siblings.addPort("0000:03:00.1");
  m_siblings.addController({});
  m_siblings.addController({"0000:03:00.1"});
  const std::string adapter = m_siblings.addController({"0000:03:00.0"});
  m_siblings.addController({"0000:03:00.0", "0000:03:00.1"});
  const std::string job = m_siblings.addJob("0000:03:00.0");
  EXPECT_THAT(enumerate(), ElementsAre(Ends(adapter, job), Ends(port, job)));
}

TEST_F(AffectedJobElement, WantsThePortsExactName) {
  m_siblings.addPort("0000:0A:00.0");
  m_siblings.addController({"0000:0A:00.0"});
  m_siblings.addJob("0000:0a:00.0");
  m_siblings.addJob("0000:0A:00");
  m_siblings.addJob("");
  EXPECT_THAT(enumerate(), IsEmpty());
}

TEST_F(AffectedJobElement, PassesOverAJobWhosePortIsUnknown) {
  const std::string port = m_siblings.addPort("0000:04:00.0");
  const std::string adapter = m_siblings.addController({"0000:03:00.0", "0000:04:00.0"});
  m_siblings.addJob("0000:03:00.0");
  const std::string job = m_siblings.addJob("0000:04:00.0");
  EXPECT_THAT(enumerate(), ElementsAre(Ends(adapter, job), Ends(port, job)));
}

TEST_F(AffectedJobElement, PassesOverAJobWhosePortBelongsToNothing) {
  m_siblings.addPort("0000:03:00.0");
  m_siblings.addController({"0000:04:00.0"});
  m_siblings.addJob("0000:03:00.0");
  EXPECT_THAT(enumerate(), IsEmpty());
}

class AffectedJobElementWithout : public AffectedJobElement,
                                  public testing::WithParamInterface<std::string> {};

TEST_P(AffectedJobElementWithout, IsGone) {
  serveJob();
  EXPECT_EQ(enumerate().size(), 2u);
  m_siblings.clear(GetParam());
  EXPECT_THAT(enumerate(), IsEmpty());
  expectRecords({"getInstances", "return 0"});
}

INSTANTIATE_TEST_SUITE_P(Classes, AffectedJobElementWithout,
                         testing::Values("Orvex_ConcreteJob", "Orvex_EthernetPort",
                                         "Orvex_PortController"));

}  // namespace
