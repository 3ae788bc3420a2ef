#include <gmock/gmock.h>

#include "cim/CIM_Service.h"
#include "core/CimAgent.h"
#include "inventory/Orvex_HostedService.h"
#include "tests/inventory/AssociationFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Service : public CIM_Service {
 public:
  Service() {
    Name.setValue("Orvex:FirmwareUpdate");
    Name.setKey();
  }
  [[nodiscard]] std::string getClassName() const override {
    return "Orvex_SoftwareInstallationService";
  }
};

class ServiceProvider : public core::InstanceProvider {
 public:
  ServiceProvider() : InstanceProvider("Orvex_SoftwareInstallationService", {}) {
    instances().add(new Service);
  }

 protected:
  void refresh() override {}
};

class ServiceAgent : public core::CimAgent {
 public:
  ServiceAgent() : CimAgent("Services") { getClasses().add(new ServiceProvider); }
};

using HostedService = test::AssociationFixture;

// The agent stays with the broker, so both are one story.
TEST_F(HostedService, LeadsFromTheMachineToTheServiceOnceItIsServed) {
  EXPECT_THAT(relations("Orvex_HostedService"), IsEmpty());
  static ServiceAgent agent;
  m_broker.addAgent(&agent);
  EXPECT_THAT(relations("Orvex_HostedService"), ElementsAre("lab-7 > Orvex:FirmwareUpdate"));
}

}  // namespace
