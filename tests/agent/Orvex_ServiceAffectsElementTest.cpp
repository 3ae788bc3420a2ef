#include <gmock/gmock.h>
#include <memory>

#include "agent/Orvex_ServiceAffectsElement.h"
#include "tests/agent/AssociationFixture.h"

namespace {

using test::Ends;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kServiceClass = "Orvex_SoftwareInstallationService";
constexpr const char* kOneService = "(int)services.size() == 1";

class ServiceAffectsElement : public test::AssociationFixture {
 protected:
  ServiceAffectsElement()
      : AssociationFixture(std::make_unique<Orvex_ServiceAffectsElementClass>(),
                           {"Orvex_ServiceAffectsElement"}, "AffectedElement", "AffectingElement") {
  }

  std::string m_service = m_siblings.addService();
};

TEST_F(ServiceAffectsElement, IsServedUnderItsName) {
  EXPECT_EQ(m_provider.getName(), "Orvex_ServiceAffectsElement");
}

TEST_F(ServiceAffectsElement, AsksForTheServiceAndForWhatItCanAffect) {
  EXPECT_THAT(requests(), ElementsAre(kServiceClass, "Orvex_EthernetPort", "Orvex_PortController",
                                      "Orvex_SoftwareIdentity"));
}

TEST_F(ServiceAffectsElement, IsMissingWithoutAnythingToAffect) {
  EXPECT_THAT(enumerate(), IsEmpty());
  expectRecords({"getInstances", "return 0"});
}

TEST_F(ServiceAffectsElement, ListsEachControllerBeforeItsPortsAtEveryEnumeration) {
  const std::string port30 = m_siblings.addPort("0000:03:00.0");
  const std::string port40 = m_siblings.addPort("0000:04:00.0");
  const std::string port31 = m_siblings.addPort("0000:03:00.1");
  const std::string port41 = m_siblings.addPort("0000:04:00.1");
  const std::string first = m_siblings.addController({"0000:03:00.1", "0000:03:00.0"});
  const std::string second = m_siblings.addController({"0000:04:00.0", "0000:04:00.1"});
  const auto all =
      ElementsAre(Ends(first, m_service), Ends(port30, m_service), Ends(port31, m_service),
                  Ends(second, m_service), Ends(port40, m_service), Ends(port41, m_service));
  EXPECT_THAT(enumerate(), all);
  EXPECT_THAT(enumerate(), all);
  expectRecords({"getInstances", "return 6"});
}

TEST_F(ServiceAffectsElement, HoldsItsReferencesOnly) {
  m_siblings.addPort("0000:03:00.0");
  m_siblings.addController({"0000:03:00.0"});
  m_siblings.addSoftwareIdentity();
  expectReferencesOnly();
}

TEST_F(ServiceAffectsElement, LeavesOutWhatCannotBeUpdated) {
  m_siblings.addPort("0000:03:00.0");
  const std::string port = m_siblings.addPort("0000:03:00.1");
  const std::string adapter = m_siblings.addController({"0000:03:00.0", "0000:03:00.1"});
  m_midApi.fixedAdapters = {"0000:03:00.0"};
  EXPECT_THAT(enumerate(), ElementsAre(Ends(adapter, m_service), Ends(port, m_service)));
  m_midApi.fixedAdapters = {"0000:03:00.0", "0000:03:00.1"};
  EXPECT_THAT(enumerate(), IsEmpty());
}

TEST_F(ServiceAffectsElement, LeavesOutPortsWithoutAControllerAndControllersWithoutPorts) {
  m_siblings.addPort("0000:02:00.0");
  const std::string port = m_siblings.addPort("0000:03:00.0");
  m_siblings.addController({});
  m_siblings.addController({"0000:05:00.0"});
  const std::string adapter = m_siblings.addController({"0000:03:00.0"});
  EXPECT_THAT(enumerate(), ElementsAre(Ends(adapter, m_service), Ends(port, m_service)));
}

TEST_F(ServiceAffectsElement, AsksTheFlashLibraryAboutOwnedPortsOnly) {
  m_siblings.addPort("0000:02:00.0");
  m_siblings.addPort("0000:03:00.1");
  m_siblings.addPort("0000:03:00.0");
  m_siblings.addController({"0000:03:00.0", "0000:03:00.1"});
  enumerate();
  EXPECT_THAT(m_midApi.calls(),
              ElementsAre("getCanBeUpdated 0000:03:00.1", "getCanBeUpdated 0000:03:00.0"));
}

TEST_F(ServiceAffectsElement, ListsAPortUnderEachControllerThatOwnsIt) {
  const std::string port = m_siblings.addPort("0000:03:00.0");
  const std::string first = m_siblings.addController({"0000:03:00.0"});
  const std::string second = m_siblings.addController({"0000:03:00.0"});
  EXPECT_THAT(enumerate(), ElementsAre(Ends(first, m_service), Ends(port, m_service),
                                       Ends(second, m_service), Ends(port, m_service)));
}

TEST_F(ServiceAffectsElement, ListsFirmwareImagesThatCanBeInstalled) {
  const std::string first = m_siblings.addSoftwareIdentity({"a", 4, {"IMG_PXE"}});
  m_siblings.addSoftwareIdentity({"b", 4, {}});
  for (const std::uint32_t kind : {0u, 3u, 5u}) {
    m_siblings.addSoftwareIdentity({"c", kind, {"IMG_PXE"}});
  }
  const std::string last = m_siblings.addSoftwareIdentity({"d", 4, {"IMG_UEFI", "IMG_PXE"}});
  EXPECT_THAT(enumerate(), ElementsAre(Ends(first, m_service), Ends(last, m_service)));
}

TEST_F(ServiceAffectsElement, ListsAdaptersBeforeImages) {
  const std::string image = m_siblings.addSoftwareIdentity();
  const std::string port = m_siblings.addPort("0000:03:00.0");
  const std::string adapter = m_siblings.addController({"0000:03:00.0"});
  EXPECT_THAT(enumerate(),
              ElementsAre(Ends(adapter, m_service), Ends(port, m_service), Ends(image, m_service)));
}

TEST_F(ServiceAffectsElement, FollowsWhatIsServed) {
  m_siblings.addPort("0000:03:00.0");
  m_siblings.addController({"0000:03:00.0"});
  const std::string image = m_siblings.addSoftwareIdentity();
  EXPECT_EQ(enumerate().size(), 3u);
  m_siblings.clear("Orvex_EthernetPort");
  EXPECT_THAT(enumerate(), ElementsAre(Ends(image, m_service)));
}

TEST_F(ServiceAffectsElement, WantsOneService) {
  const std::string image = m_siblings.addSoftwareIdentity();
  m_siblings.addService();
  expectRefusal(kOneService);
  m_siblings.clear(kServiceClass);
  expectRefusal(kOneService);
  m_siblings.addService();
  EXPECT_THAT(enumerate(), ElementsAre(Ends(image, m_service)));
}

TEST_F(ServiceAffectsElement, CountsTheServicesWhenItHasAskedForEverything) {
  m_siblings.clear(kServiceClass);
  m_siblings.takeRequests();
  expectRefusal(kOneService);
  EXPECT_THAT(m_siblings.takeRequests(),
              ElementsAre(kServiceClass, "Orvex_EthernetPort", "Orvex_PortController",
                          "Orvex_SoftwareIdentity"));
  EXPECT_THAT(m_midApi.calls(), IsEmpty());
}

TEST_F(ServiceAffectsElement, IsGoneAfterARefusal) {
  m_siblings.addSoftwareIdentity();
  expectRefusalEmptiesTheList(kOneService);
}

}  // namespace
