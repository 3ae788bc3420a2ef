#include <gmock/gmock.h>

#include "client/BrokerConnection.h"
#include "client/Fault.h"
#include "client/InstallationService.h"
#include "tests/client/FakeService.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kTarget = "Port.DeviceID=\"1\"";

class InstallationServiceTest : public testing::Test {
 protected:
  InstallationServiceTest() {
    auto service = std::make_unique<test::FakeService>();
    m_service = service.get();
    m_agent.serve("Orvex_SoftwareInstallationService").add(std::move(service));
    m_broker.addAgent(&m_agent);
  }

  // Returns the only call that the service got.
  test::FakeService::Call call() {
    EXPECT_THAT(m_service->calls, SizeIs(1));
    return std::exchange(m_service->calls, {}).at(0);
  }

  core::CimBroker m_broker;
  test::FakeAgent m_agent;
  test::FakeService* m_service;
  client::BrokerConnection m_connection{m_broker};
};

TEST_F(InstallationServiceTest, InstallsFromAUri) {
  m_service->answer = 4099;
  EXPECT_EQ(client::installFromUri(m_connection, "file:///a.rom", kTarget, {}).returnValue, 4099U);
  const test::FakeService::Call request = call();
  EXPECT_EQ(request.method, "InstallFromURI");
  EXPECT_THAT(request.in, ElementsAre("URI=\"file:///a.rom\"", "Target=Port.DeviceID=\"1\"",
                                      "InstallOptions={5}", "InstallOptionsValues={\"\"}"));
  EXPECT_THAT(request.out, IsEmpty());
}

TEST_F(InstallationServiceTest, PutsTheTextOfAnOptionAtItsPlace) {
  static_cast<void>(client::installFromUri(m_connection, "", kTarget, {true, "IMG_PXE"}));
  EXPECT_THAT(call().in, ElementsAre("URI=\"\"", testing::_, "InstallOptions={5, 3, 32768}",
                                     "InstallOptionsValues={\"\", \"\", \"IMG_PXE\"}"));
  static_cast<void>(client::installFromUri(m_connection, "", kTarget, {false, "IMG_PXE"}));
  EXPECT_THAT(call().in, ElementsAre(testing::_, testing::_, "InstallOptions={5, 32768}",
                                     "InstallOptionsValues={\"\", \"IMG_PXE\"}"));
}

TEST_F(InstallationServiceTest, InstallsAnIdentity) {
  m_service->answer = 5;
  const client::MethodAnswer answer =
      client::installFromIdentity(m_connection, "Identity.Id=\"a\"", kTarget, {});
  EXPECT_EQ(answer.returnText, "Invalid Parameter");
  const test::FakeService::Call request = call();
  EXPECT_EQ(request.method, "InstallFromSoftwareIdentity");
  EXPECT_THAT(request.in,
              ElementsAre("Source=Identity.Id=\"a\"", "Target=Port.DeviceID=\"1\"",
                          "Collection=NULL", "InstallOptions={5}", "InstallOptionsValues={\"\"}"));
  EXPECT_THAT(request.out, IsEmpty());
  static_cast<void>(
      client::installFromIdentity(m_connection, "Identity.Id=\"a\"", kTarget, {true, ""}));
  EXPECT_THAT(call().in, testing::Contains("InstallOptions={5, 3}"));
}

TEST_F(InstallationServiceTest, ChecksAnIdentity) {
  m_service->characteristics = {7};
  const client::CheckAnswer answer =
      client::checkIdentity(m_connection, "Identity.Id=\"a\"", kTarget);
  EXPECT_TRUE(answer.call.isAccepted());
  EXPECT_THAT(answer.characteristics, ElementsAre(7));
  const test::FakeService::Call request = call();
  EXPECT_EQ(request.method, "CheckSoftwareIdentity");
  EXPECT_THAT(request.in, ElementsAre("Source=Identity.Id=\"a\"", "Target=Port.DeviceID=\"1\"",
                                      "Collection=NULL"));
  EXPECT_THAT(request.out, ElementsAre("InstallCharacteristics=NULL"));
}

TEST_F(InstallationServiceTest, TellsNoCharacteristicsOfWhatItRefuses) {
  m_service->characteristics = {7};
  m_service->answer = 5;
  const client::CheckAnswer answer =
      client::checkIdentity(m_connection, "Identity.Id=\"a\"", kTarget);
  EXPECT_EQ(answer.call.returnValue, 5U);
  EXPECT_THAT(answer.characteristics, IsEmpty());
}

TEST(InstallCharacteristic, IsToldInWords) {
  EXPECT_EQ(client::describeCharacteristic(7), "no reboot required");
  EXPECT_EQ(client::describeCharacteristic(6), "a manual reboot is required");
  EXPECT_EQ(client::describeCharacteristic(32768), "characteristic 32768");
}

TEST_F(InstallationServiceTest, IsMissedWhenItIsNotThere) {
  core::CimBroker broker;
  client::BrokerConnection connection(broker);
  EXPECT_THROW(static_cast<void>(client::installFromUri(connection, "", kTarget, {})),
               client::Fault);
}

}  // namespace
