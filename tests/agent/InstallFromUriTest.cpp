#include <algorithm>
#include <functional>
#include <gmock/gmock.h>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "agent/Orvex_SoftwareInstallationService.h"
#include "core/CimPropertyRef.h"
#include "tests/agent/FakeJobFactory.h"
#include "tests/agent/FakeSiblings.h"
#include "tests/agent/JobAnswers.h"
#include "tests/support/LogCapture.h"
#include "tests/support/SourcePlace.h"
#include "tests/support/Throws.h"

namespace {

using test::IsAssertion;
using test::LogLevel;
using test::ThrowsExactly;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kSource = "Orvex_SoftwareInstallationService";
constexpr const char* kFunction = "Orvex_SoftwareInstallationService::InstallFromURI";

class InstallFromUri : public testing::Test {
 protected:
  InstallFromUri() {
    m_uri.setValue("file:///image.rom");
    m_target.setText(m_siblings.addPort("0000:03:00.0"));
    m_options.setValue({5});
    m_values.setValue({"IMG_PXE"});
  }

  // Invokes the method with the arguments but those of the names.
  std::uint32_t invokeWithout(const std::vector<std::string>& names) {
    core::CimPropertyList in;
    for (core::CimProperty* argument : arguments()) {
      if (std::find(names.begin(), names.end(), argument->getName()) == names.end()) {
        in.add(argument);
      }
    }
    core::CimPropertyList out;
    m_log.clear();
    const std::uint32_t returned = m_service.invokeMethod("InstallFromURI", &in, &out, &m_job);
    EXPECT_EQ(out.size(), 0u);
    return returned;
  }

  std::uint32_t invoke() { return invokeWithout({}); }

  auto invoking(const std::vector<std::string>& left) {
    return [this, left] { static_cast<void>(invokeWithout(left)); };
  }

  auto invokingWithNull(core::CimProperty& argument) {
    argument.setNull();
    return invoking({});
  }

  std::vector<core::CimProperty*> arguments() { return {&m_uri, &m_target, &m_options, &m_values}; }

  // Returns the service's records, which are all of one kind.
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

  test::PlacedLog m_log;
  test::FakeSiblings m_siblings;
  std::optional<test::FakeJobFactory> m_factory{std::in_place};
  Orvex_SoftwareInstallationService m_service;
  Orvex_SoftwareInstallationService m_created;  // stands for a job
  core::CimInstance* m_job = nullptr;
  core::CimPropertyString m_uri{"URI", nullptr};
  core::CimPropertyRef m_target{"Target", nullptr};
  core::CimPropertyUint16_arr m_options{"InstallOptions", nullptr};
  core::CimPropertyString_arr m_values{"InstallOptionsValues", nullptr};
};

TEST_F(InstallFromUri, HandsOutTheJob) {
  m_factory->created = &m_created;

  EXPECT_EQ(invoke(), 4096u);

  EXPECT_EQ(m_job, &m_created);
  ASSERT_EQ(m_factory->requests.size(), 1u);
  const test::FakeJobFactory::Request& request = m_factory->requests[0];
  EXPECT_EQ(request.target, "0000:03:00.0");
  EXPECT_EQ(request.uri, "file:///image.rom");
  EXPECT_THAT(request.installOptions, ElementsAre(5));
  EXPECT_THAT(request.installOptionsValues, ElementsAre("IMG_PXE"));
}

TEST_F(InstallFromUri, HandsOutNoJobWithAnotherAnswer) {
  m_factory->created = &m_created;
  m_factory->result = agent::kJobTargetInUse;

  EXPECT_EQ(invoke(), 6u);
  EXPECT_EQ(m_job, nullptr);
}

TEST_F(InstallFromUri, IsTimed) {
  invoke();

  const std::vector<test::LogRecord> records = m_log.records();
  EXPECT_THAT(records, test::HasRecord(LogLevel::Debug, "utils::TimeStamp::Init",
                                       testing::HasSubstr("Entering 'InstallFromURI'")));
  EXPECT_THAT(records.back().message, testing::HasSubstr("Leaving  'InstallFromURI' after "));
}

TEST_F(InstallFromUri, WantsEveryArgument) {
  for (const core::CimProperty* argument : arguments()) {
    const std::string& name = argument->getName();
    EXPECT_THAT(invoking({name}), ThrowsExactly<utils::EUnspecifiedError>(
                                      "Quorvel: EUnspecifiedError:Expected " + name + " argument"));
  }
  EXPECT_THAT(m_factory->requests, IsEmpty());
}

TEST_F(InstallFromUri, NamesTheFirstArgumentThatIsMissing) {
  const auto missing = [this](const std::vector<std::string>& names, const std::string& first) {
    EXPECT_THAT(invoking(names), ThrowsExactly<utils::EUnspecifiedError>(
                                     "Quorvel: EUnspecifiedError:Expected " + first + " argument"));
  };
  missing({"URI", "Target", "InstallOptions", "InstallOptionsValues"}, "URI");
  missing({"Target", "InstallOptions", "InstallOptionsValues"}, "Target");
  missing({"InstallOptions", "InstallOptionsValues"}, "InstallOptions");
}

TEST_F(InstallFromUri, LooksForMissingArgumentsBeforeNulls) {
  m_uri.setNull();
  EXPECT_THAT(invoking({"InstallOptionsValues"}),
              ThrowsExactly<utils::EUnspecifiedError>(
                  "Quorvel: EUnspecifiedError:Expected InstallOptionsValues argument"));
}

TEST_F(InstallFromUri, WantsArgumentsWithoutAList) {
  EXPECT_THAT(
      [this] { m_service.InstallFromURI(nullptr, nullptr, nullptr); },
      ThrowsExactly<utils::EUnspecifiedError>("Quorvel: EUnspecifiedError:Expected URI argument"));
}

TEST_F(InstallFromUri, TakesAnArgumentOfAnotherTypeForMissing) {
  core::CimPropertyString options("InstallOptions", nullptr);
  options.setValue("5");
  core::CimPropertyList in;
  for (core::CimProperty* argument :
       std::vector<core::CimProperty*>{&m_uri, &m_target, &options, &m_values}) {
    in.add(argument);
  }
  EXPECT_THAT([&] { m_service.InstallFromURI(&in, nullptr, nullptr); },
              ThrowsExactly<utils::EUnspecifiedError>(
                  "Quorvel: EUnspecifiedError:Expected InstallOptions argument"));
}

TEST_F(InstallFromUri, RefusesNullArguments) {
  const auto refused = [](const std::string& name) {
    return ThrowsExactly<utils::EUnspecifiedError>("Quorvel: EUnspecifiedError:" + name +
                                                   " argument is set to NULL. It is not allowed");
  };
  EXPECT_THAT(invokingWithNull(m_options), refused("InstallOptions"));
  EXPECT_THAT(invokingWithNull(m_target), refused("Target"));
  EXPECT_THAT(invokingWithNull(m_uri), refused("URI"));
  EXPECT_THAT(m_factory->requests, IsEmpty());
}

TEST_F(InstallFromUri, AcceptsNullValuesAndPassesWhatTheyHold) {
  m_values.setNull();
  EXPECT_EQ(invoke(), 4096u);
  ASSERT_EQ(m_factory->requests.size(), 1u);
  EXPECT_THAT(m_factory->requests[0].installOptionsValues, ElementsAre("IMG_PXE"));
}

TEST_F(InstallFromUri, RefusesOptionsWithoutARecord) {
  for (const std::vector<std::uint16_t>& options :
       std::vector<std::vector<std::uint16_t>>{{}, {3}, {5, 4}, {4, 5}, {32768}, {2, 3, 5}}) {
    m_options.setValue(options);
    EXPECT_EQ(invoke(), 5u) << testing::PrintToString(options);
    EXPECT_THAT(messages(), IsEmpty());
  }
  EXPECT_THAT(m_factory->requests, IsEmpty());
}

TEST_F(InstallFromUri, PassesOnOptionsThatItDoesNotKnow) {
  for (const std::vector<std::uint16_t>& options :
       std::vector<std::vector<std::uint16_t>>{{5}, {3, 5}, {5, 32768}, {0, 1, 5, 13, 65535}}) {
    m_options.setValue(options);
    EXPECT_EQ(invoke(), 4096u) << testing::PrintToString(options);
    EXPECT_EQ(m_factory->requests.back().installOptions, options);
  }
}

TEST_F(InstallFromUri, LooksAtTheOptionsBeforeTheTarget) {
  m_target.setText("Orvex_EthernetPort.DeviceID=\"nowhere\"");
  m_options.setValue({});
  EXPECT_EQ(invoke(), 5u);
  EXPECT_THAT(messages(), IsEmpty());
}

// Its path is an argument, and arguments are read before anything is decided.
TEST_F(InstallFromUri, ReadsTheTargetBeforeTheOptions) {
  m_target.setText("malformed");
  m_options.setValue({});
  EXPECT_THROW(invoke(), utils::ESyntaxError);
  EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(InstallFromUri, LeavesAMalformedTargetToTheCaller) {
  m_target.setText("malformed");
  EXPECT_THROW(invoke(), utils::ESyntaxError);
}

TEST_F(InstallFromUri, NamesATargetThatIsAnInstanceByItsPath) {
  Orvex_SoftwareInstallationService stranger;
  stranger.setPropertyValues();
  m_target.setTarget(&stranger);
  EXPECT_EQ(invoke(), 5u);
  EXPECT_THAT(messages(),
              ElementsAre("Firmware Update cannot find instance '" + stranger.getPath() + "'"));
}

// -- target and job class --

// Serves no ports but those that a test adds.
class UpdateTarget : public InstallFromUri {
 protected:
  UpdateTarget() { m_siblings.clear("Orvex_EthernetPort"); }

  std::uint32_t update(const std::string& target) {
    m_target.setText(target);
    return invoke();
  }

  // Returns an update for matchers of what it throws.
  auto updating(const std::string& target) {
    return [this, target] { static_cast<void>(update(target)); };
  }

  void expectUnsupported(const std::string& target) {
    EXPECT_EQ(update(target), 4106u);
    EXPECT_THAT(messages(),
                ElementsAre("Firmware Update does not support target '" + target + "'"));
  }
};

TEST_F(UpdateTarget, AsksForAJobForThePort) {
  m_siblings.addPort("0000:03:00.0");
  const std::string target = m_siblings.addPort("0000:03:00.1");
  m_factory->created = &m_created;

  EXPECT_EQ(update(target), 4096u);

  EXPECT_EQ(m_job, &m_created);
  ASSERT_EQ(m_factory->requests.size(), 1u);
  const test::FakeJobFactory::Request& request = m_factory->requests[0];
  EXPECT_EQ(request.target, "0000:03:00.1");
  EXPECT_EQ(request.uri, "file:///image.rom");
  EXPECT_THAT(request.installOptions, ElementsAre(5));
  EXPECT_THAT(request.installOptionsValues, ElementsAre("IMG_PXE"));
  EXPECT_TRUE(request.create);
  EXPECT_THAT(messages(), ElementsAre("Creation of new job returns: 0"));
}

TEST_F(UpdateTarget, NeedsNoPlaceForTheJob) {
  m_target.setText(m_siblings.addPort("0000:03:00.0"));
  m_factory->created = &m_created;
  core::CimPropertyList in;
  for (core::CimProperty* argument : arguments()) {
    in.add(argument);
  }
  EXPECT_EQ(m_service.InstallFromURI(&in, nullptr, nullptr), 4096u);
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

  EXPECT_EQ(update(target), 5u);

  EXPECT_THAT(messages(),
              ElementsAre("Firmware Update does not support instance '" + target + "'"));
  EXPECT_THAT(m_factory->requests, IsEmpty());
}

TEST_F(UpdateTarget, RefusesAPortWithoutIdentity) {
  const std::string target = m_siblings.addPort("");

  EXPECT_EQ(update(target), 5u);

  EXPECT_THAT(messages(),
              ElementsAre("Firmware Update does not support instance '" + target + "'"));
}

TEST_F(UpdateTarget, RefusesATargetOfAnotherClass) {
  for (const std::string& target : {m_siblings.addSoftwareIdentity(), m_siblings.addService()}) {
    expectUnsupported(target);
  }
  EXPECT_THAT(m_factory->requests, IsEmpty());
}

TEST_F(UpdateTarget, GoesByTheExactNameOfTheClass) {
  m_siblings.addPort("0000:03:00.0");
  for (const std::string& target :
       {m_siblings.addPort("0000:03:00.0", "Orvex_ethernetPort"),
        m_siblings.addController({"0000:03:00.0"}, "Orvex_Portcontroller")}) {
    expectUnsupported(target);
  }
  EXPECT_THAT(m_factory->requests, IsEmpty());
}

TEST_F(UpdateTarget, RefusesATargetThatDoesNotExist) {
  m_siblings.addPort("0000:03:00.0");
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
  }
}

class UpdateTargetResult : public UpdateTarget,
                           public testing::WithParamInterface<test::JobAnswer> {};

TEST_P(UpdateTargetResult, IsTranslated) {
  const test::JobAnswer& answer = GetParam();
  const std::string target = m_siblings.addPort("0000:03:00.0");
  m_factory->result = answer.result;
  m_factory->created = &m_created;

  EXPECT_EQ(update(target), answer.isSuccess() ? 4096 : answer.returnValue);

  EXPECT_EQ(messages(), answer.records("Creation of new job returns: ", target));
  EXPECT_EQ(m_job, answer.isSuccess() ? &m_created : nullptr);
}

INSTANTIATE_TEST_SUITE_P(JobResults, UpdateTargetResult,
                         testing::ValuesIn(test::allJobAnswers("Job creation")));

}  // namespace
