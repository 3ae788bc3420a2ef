#include <gmock/gmock.h>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "agent/InstallSteps.h"
#include "agent/Orvex_SoftwareInstallationService.h"
#include "cim/InstallOptions.h"
#include "tests/agent/FakeJobFactory.h"
#include "tests/agent/FakeSiblings.h"
#include "tests/agent/JobAnswers.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Throws.h"

namespace {

using test::IsAssertion;
using test::LogLevel;
using test::ThrowsExactly;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kSource = "Orvex_SoftwareInstallationService";
constexpr const char* kFunction = "Orvex_SoftwareInstallationService::InstallFromURI";

using Options = std::vector<std::uint16_t>;

class UpdateTarget : public testing::Test {
 protected:
  std::uint32_t update(const std::string& targetPath) {
    m_update.targetPath = targetPath;
    return agent::processUpdate(agent::kInstallFromUri, m_update, &m_job);
  }

  // Returns an update for matchers of what it throws.
  auto updating(const std::string& targetPath) {
    return [this, targetPath] { static_cast<void>(update(targetPath)); };
  }

  // Returns the records of the installation service, which are all of one kind.
  std::vector<std::string> messages() const {
    std::vector<std::string> messages;
    for (const test::LogRecord& record : m_log.records()) {
      if (record.source == kSource) {
        EXPECT_EQ(record.function, kFunction);
        EXPECT_EQ(record.level, LogLevel::Debug);
        messages.push_back(record.message);
      }
    }
    return messages;
  }

  test::LogCapture m_log;
  test::FakeSiblings m_siblings;
  std::optional<test::FakeJobFactory> m_factory{std::in_place};
  Orvex_SoftwareInstallationService m_created;  // stands for a job
  core::CimInstance* m_job = nullptr;
  agent::Update m_update{"file:///image.rom", "", {cim::kUpdate}, {"IMG_PXE"}};
};

TEST_F(UpdateTarget, AsksForAJobForThePort) {
  m_siblings.addPort("0000:03:00.0");
  const std::string target = m_siblings.addPort("0000:03:00.1");
  m_factory->created = &m_created;
  m_log.clear();

  EXPECT_EQ(update(target), 4096u);

  EXPECT_EQ(m_job, &m_created);
  ASSERT_EQ(m_factory->requests.size(), 1u);
  const test::FakeJobFactory::Request& request = m_factory->requests[0];
  EXPECT_EQ(request.target, "0000:03:00.1");
  EXPECT_EQ(request.uri, "file:///image.rom");
  EXPECT_THAT(request.installOptions, ElementsAre(cim::kUpdate));
  EXPECT_THAT(request.installOptionsValues, ElementsAre("IMG_PXE"));
  EXPECT_TRUE(request.create);
  EXPECT_THAT(messages(), ElementsAre("Creation of new job returns: 0"));
}

TEST_F(UpdateTarget, NeedsNoPlaceForTheJob) {
  m_update.targetPath = m_siblings.addPort("0000:03:00.0");
  m_factory->created = &m_created;

  EXPECT_EQ(agent::processUpdate(agent::kInstallFromUri, m_update, nullptr), 4096u);
}

TEST_F(UpdateTarget, TakesTheFirstPortOfAController) {
  m_siblings.addPort("0000:02:00.0");
  m_siblings.addPort("0000:03:00.1");
  m_siblings.addPort("0000:03:00.0");
  const std::string target = m_siblings.addController({"0000:03:00.0", "0000:03:00.1"});

  EXPECT_EQ(update(target), 4096u);

  ASSERT_EQ(m_factory->requests.size(), 1u);
  EXPECT_EQ(m_factory->requests[0].target, "0000:03:00.1");
}

TEST_F(UpdateTarget, RefusesAControllerWithoutPorts) {
  m_siblings.addPort("0000:02:00.0");
  const std::string target = m_siblings.addController({"0000:03:00.0"});
  m_log.clear();

  EXPECT_EQ(update(target), 5u);

  EXPECT_THAT(messages(),
              ElementsAre("Firmware Update does not support instance '" + target + "'"));
  EXPECT_THAT(m_factory->requests, IsEmpty());
}

TEST_F(UpdateTarget, RefusesAPortWithoutIdentity) {
  const std::string target = m_siblings.addPort("");
  m_log.clear();

  EXPECT_EQ(update(target), 5u);

  EXPECT_THAT(messages(),
              ElementsAre("Firmware Update does not support instance '" + target + "'"));
}

TEST_F(UpdateTarget, RefusesATargetOfAnotherClass) {
  const std::string target = m_siblings.addSoftwareIdentity();
  m_log.clear();

  EXPECT_EQ(update(target), 4106u);

  EXPECT_THAT(messages(), ElementsAre("Firmware Update does not support target '" + target + "'"));
  EXPECT_THAT(m_factory->requests, IsEmpty());
}

TEST_F(UpdateTarget, RefusesATargetThatDoesNotExist) {
  m_siblings.addPort("0000:03:00.0");
  m_log.clear();
  for (const char* target : {"Orvex_EthernetPort.DeviceID=\"7\"", "Orvex_Nothing.DeviceID=\"0\"",
                             "orvex_ethernetport.DeviceID=\"0\""}) {
    EXPECT_EQ(update(target), 5u);
    EXPECT_EQ(messages().back(),
              "Firmware Update cannot find instance '" + std::string(target) + "'");
  }
  EXPECT_THAT(m_factory->requests, IsEmpty());
}

TEST_F(UpdateTarget, LeavesAMalformedTargetPathToTheCaller) {
  for (const char* target : {"", "Orvex_EthernetPort", "Orvex_EthernetPort.DeviceID"}) {
    EXPECT_THROW(updating(target)(), utils::ESyntaxError) << target;
  }
  EXPECT_THAT(m_factory->requests, IsEmpty());
}

TEST_F(UpdateTarget, WantsAJobClass) {
  const std::string target = m_siblings.addPort("0000:03:00.0");
  m_factory.reset();

  EXPECT_THAT(updating(target),
              ThrowsExactly<utils::Exception>(IsAssertion(kSource, "cimclass != NULL")));
}

TEST_F(UpdateTarget, AnswersWhatTheJobClassThrowsByAWantOfMemory) {
  const std::string target = m_siblings.addPort("0000:03:00.0");
  m_log.clear();
  const std::vector<std::function<void()>> faults = {
      [] { throw std::bad_alloc(); }, [] { throw std::runtime_error("x"); }, [] { throw 1; }};
  for (const auto& fault : faults) {
    m_factory->fault = fault;
    EXPECT_EQ(update(target), 4100u);
    EXPECT_THAT(messages(), ElementsAre("Allocation error occured for '" + target + "'"));
    EXPECT_EQ(m_job, nullptr);
    m_log.clear();
  }
}

class UpdateTargetResult : public UpdateTarget,
                           public testing::WithParamInterface<test::JobAnswer> {};

TEST_P(UpdateTargetResult, IsTranslated) {
  const test::JobAnswer& answer = GetParam();
  const std::string target = m_siblings.addPort("0000:03:00.0");
  m_factory->result = answer.result;
  m_factory->created = &m_created;
  m_log.clear();

  EXPECT_EQ(update(target), answer.isSuccess() ? 4096 : answer.returnValue);

  EXPECT_EQ(messages(), answer.records("Creation of new job returns: ", target));
  EXPECT_EQ(m_job, answer.isSuccess() ? &m_created : nullptr);
}

INSTANTIATE_TEST_SUITE_P(JobResults, UpdateTargetResult,
                         testing::ValuesIn(test::allJobAnswers("Job creation")));

TEST(AreOptionsSupported, NeedsTheUpdateOption) {
  EXPECT_TRUE(agent::areOptionsSupported({5}));
  EXPECT_TRUE(agent::areOptionsSupported({3, 5}));
  EXPECT_FALSE(agent::areOptionsSupported({3}));
  EXPECT_FALSE(agent::areOptionsSupported({}));
}

TEST(AreOptionsSupported, RefusesWhatTheServiceCannotDo) {
  for (const std::uint16_t option : Options{2, 4, 6, 7, 8, 9, 10, 11, 12}) {
    EXPECT_FALSE(agent::areOptionsSupported(Options{5, option})) << option;
    EXPECT_FALSE(agent::areOptionsSupported(Options{option, 3, 5})) << option;
  }
}

TEST(AreOptionsSupported, LetsOtherValuesPass) {
  for (const std::uint16_t option : Options{0, 1, 3, 13, 14, 32767, 32768, 65535}) {
    EXPECT_TRUE(agent::areOptionsSupported(Options{5, option})) << option;
  }
}

}  // namespace
