#include <gmock/gmock.h>

#include "Utils/Exception.h"
#include "Utils/Log.h"
#include "client/MethodCall.h"
#include "tests/client/FakeAgent.h"
#include "tests/support/Throws.h"

namespace {

constexpr utils::LogSource kLog{"MethodCallTest"};

// A service whose method answers what the test says.
class Service : public test::FakeInstance {
 public:
  Service() : FakeInstance("Service", "1") {
    addMethod("InstallFromURI", &core::CimInstance::InstallFromURI);
    addMethod("RequestStateChange", &core::CimInstance::InstallFromURI);
    addMethod("Rest", &core::CimInstance::InstallFromURI);
  }

  std::uint32_t InstallFromURI(core::CimPropertyList*, core::CimPropertyList*,
                               core::CimInstance** created) override {
    utils::logError(kLog, "InstallFromURI", "Exception: 'EInvalidUri:no'");
    *created = job;
    return answer;
  }

  std::uint32_t answer = 0;
  core::CimInstance* job = nullptr;
};

class MethodCallTest : public testing::Test {
 protected:
  client::MethodAnswer call(const std::string& method = "InstallFromURI") {
    core::CimPropertyList in;
    core::CimPropertyList out;
    return client::callMethod(m_service, method, in, out);
  }

  Service m_service;
};

TEST_F(MethodCallTest, GivesTheReasonOfARefusal) {
  m_service.answer = 5;
  const client::MethodAnswer answer = call();
  EXPECT_FALSE(answer.isAccepted());
  EXPECT_EQ(answer.returnText, "Invalid Parameter");
  EXPECT_EQ(answer.reason, "EInvalidUri:no");
  EXPECT_EQ(answer.jobPath, "");
}

TEST_F(MethodCallTest, GivesThePathOfTheJob) {
  test::FakeJob job({{2, 0}});
  m_service.answer = 4096;
  m_service.job = &job;
  const client::MethodAnswer answer = call();
  EXPECT_TRUE(answer.isAccepted());
  EXPECT_EQ(answer.jobPath, "Orvex_ConcreteJob.InstanceID=\"job 1\"");
  EXPECT_EQ(answer.reason, "");
}

TEST_F(MethodCallTest, TellsWhatANumberMeansForTheMethod) {
  m_service.answer = 4097;
  EXPECT_EQ(call("RequestStateChange").returnText, "Invalid State Transition");
  EXPECT_EQ(call("Rest").returnText, "");
}

TEST_F(MethodCallTest, LetsFaultsThrough) {
  EXPECT_THAT([this] { call("Dance"); },
              test::ThrowsExactly<utils::ENotSupported>(
                  "Quorvel: ENotSupported:Method Dance is not support by Service class"));
}

}  // namespace
