// What the tests of the two methods that take a software identity share: what tells the methods
// apart, the arguments, the call, and the method's records.

#ifndef ORVEX_TESTS_AGENT_IDENTITYMETHODFIXTURE_H_
#define ORVEX_TESTS_AGENT_IDENTITYMETHODFIXTURE_H_

#include <algorithm>
#include <cstdint>
#include <gmock/gmock.h>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "agent/Orvex_SoftwareInstallationService.h"
#include "core/CimPropertyRef.h"
#include "tests/agent/FakeJobFactory.h"
#include "tests/agent/FakeSiblings.h"
#include "tests/support/LogCapture.h"
#include "tests/support/SourcePlace.h"
#include "tests/support/Throws.h"

namespace test {

struct IdentityMethodTraits {
  std::string name;
  bool takesOptions;             // as input, else it gives characteristics as output
  std::string bothTargets;       // the fault of a target beside a collection
  std::string lookUp;            // what its records of things that cannot be found begin with
  std::string answer;            // what its record of the job class's answer begins with
  std::string invalidParameter;  // what its record of the answer "invalid parameter" begins with
  std::uint32_t success;
};

inline void PrintTo(const IdentityMethodTraits& method, std::ostream* stream) {
  *stream << method.name;
}

inline const IdentityMethodTraits kInstallMethod = {"InstallFromSoftwareIdentity",
                                                    true,
                                                    "Target and Collection are defined",
                                                    "",
                                                    "Creation of new job returns: ",
                                                    "Job creation",
                                                    4096};

inline const IdentityMethodTraits kCheckMethod = {"CheckSoftwareIdentity",
                                                  false,
                                                  "Both Target and Collection are defined",
                                                  "Checking ",
                                                  "Verification of image returns: ",
                                                  "Image verification",
                                                  0};

class IdentityMethodFixture : public testing::Test {
 protected:
  explicit IdentityMethodFixture(const IdentityMethodTraits& method) : m_method(method) {
    m_options.setValue({3, 5});
    m_values.setValue({"", "x"});
    m_siblings.addResource("firmware", "file:///image.rom");
    m_source.setText(m_siblings.addSoftwareIdentity());
    m_target.setText(m_siblings.addPort("0000:03:00.0"));
    m_factory->created = &m_created;
  }

  // Invokes the method with the arguments but those of the names, and with a further input.
  std::uint32_t invokeWithout(const std::vector<std::string>& names,
                              core::CimProperty* further = nullptr) {
    core::CimPropertyList in;
    core::CimPropertyList out;
    const auto fill = [&names](core::CimPropertyList& list,
                               const std::vector<core::CimProperty*>& arguments) {
      for (core::CimProperty* argument : arguments) {
        if (std::find(names.begin(), names.end(), argument->getName()) == names.end()) {
          list.add(argument);
        }
      }
    };
    fill(in, m_in);
    fill(out, m_out);
    if (further != nullptr) {
      in.add(further);
    }
    m_log.clear();
    m_job = nullptr;
    return m_service.invokeMethod(m_method.name, &in, &out, &m_job);
  }

  std::uint32_t invoke() { return invokeWithout({}); }

  auto invokingWithout(const std::vector<std::string>& names,
                       core::CimProperty* further = nullptr) {
    return [this, names, further] { static_cast<void>(invokeWithout(names, further)); };
  }

  // Invokes the method with an argument in the place of that of its name.
  auto invokingWith(core::CimProperty& argument) {
    return invokingWithout({argument.getName()}, &argument);
  }

  static auto throwsFault(const std::string& text) {
    return ThrowsExactly<utils::EUnspecifiedError>("Quorvel: EUnspecifiedError:" + text);
  }

  // Leaves out ever fewer arguments, so that each is the first that is missing.
  void expectEveryArgumentIsWanted() {
    std::vector<core::CimProperty*> arguments = m_in;
    arguments.insert(arguments.end(), m_out.begin(), m_out.end());
    std::vector<std::string> left;
    for (const core::CimProperty* argument : arguments) {
      left.push_back(argument->getName());
    }
    while (!left.empty()) {
      EXPECT_THAT(invokingWithout(left), throwsFault("Expected " + left.front() + " argument"));
      EXPECT_THAT(messages(), testing::IsEmpty());
      left.erase(left.begin());
    }
  }

  // Invokes, and expects a refusal with this return value and these records from the arguments'
  // check on.
  void expectRefusal(std::uint32_t expected, const std::vector<std::string>& records) {
    EXPECT_EQ(invoke(), expected);
    EXPECT_EQ(m_job, nullptr);
    EXPECT_TRUE(m_characteristics.isNull());
    EXPECT_EQ(messages(), startedWith(records));
  }

  // The same, of one that comes before the job class is asked.
  void expectEarlyRefusal(std::uint32_t expected, const std::vector<std::string>& records) {
    expectRefusal(expected, records);
    EXPECT_THAT(m_factory->requests, testing::IsEmpty());
  }

  // Invokes, and expects a fault that comes before the source is looked at.
  void expectFault(const std::string& text, const std::string& nullStates) {
    EXPECT_THAT(invokingWithout({}), throwsFault(text));
    EXPECT_THAT(messages(), testing::ElementsAre("All arguments are defined", nullStates));
  }

  // Invokes, and returns what the job class was asked for, once.
  FakeJobFactory::Request request() {
    static_cast<void>(invoke());
    EXPECT_EQ(m_factory->requests.size(), 1u);
    return m_factory->requests.at(0);
  }

  // Returns the records of a call with a target and these further ones.
  static std::vector<std::string> startedWith(const std::vector<std::string>& records) {
    std::vector<std::string> all{"All arguments are defined", "Target:0, Source:0, Collection:1",
                                 "Starting arguments verification success"};
    all.insert(all.end(), records.begin(), records.end());
    return all;
  }

  // Returns the records of a source that is as it should be, and these further ones.
  static std::vector<std::string> afterSource(const std::vector<std::string>& records) {
    std::vector<std::string> all{"URI is: file:///image.rom", "TargetTypes are: IMG_PXE"};
    all.insert(all.end(), records.begin(), records.end());
    return all;
  }

  // Returns the records of a call whose source is as it should be, and these further ones.
  static std::vector<std::string> allWithSource(const std::vector<std::string>& records) {
    return startedWith(afterSource(records));
  }

  // Returns the service's records, which are all of one kind.
  std::vector<std::string> messages() const {
    std::vector<std::string> messages;
    for (const LogRecord& record : m_log.records()) {
      if (record.source == "Orvex_SoftwareInstallationService") {
        EXPECT_EQ(record.function, "Orvex_SoftwareInstallationService::" + m_method.name);
        EXPECT_EQ(record.level, LogLevel::Debug);
        messages.push_back(record.message);
      }
    }
    return messages;
  }

  std::string source() const { return m_source.toString(); }
  std::string target() const { return m_target.toString(); }

  PlacedLog m_log;
  FakeSiblings m_siblings;
  std::optional<FakeJobFactory> m_factory{std::in_place};
  Orvex_SoftwareInstallationService m_service;
  Orvex_SoftwareInstallationService m_created;  // stands for a job
  core::CimInstance* m_job = nullptr;
  core::CimPropertyUint16_arr m_options{"InstallOptions", nullptr};
  core::CimPropertyString_arr m_values{"InstallOptionsValues", nullptr};
  core::CimPropertyRef m_source{"Source", nullptr};
  core::CimPropertyRef m_target{"Target", nullptr};
  core::CimPropertyRef m_collection{"Collection", nullptr};
  core::CimPropertyUint16_arr m_characteristics{"InstallCharacteristics", nullptr};

  const IdentityMethodTraits m_method;

 private:
  // In the order in which the method wants them.
  const std::vector<core::CimProperty*> m_in =
      m_method.takesOptions ? std::vector<core::CimProperty*>{&m_options, &m_values, &m_source,
                                                              &m_target, &m_collection}
                            : std::vector<core::CimProperty*>{&m_source, &m_target, &m_collection};
  const std::vector<core::CimProperty*> m_out =
      m_method.takesOptions ? std::vector<core::CimProperty*>{}
                            : std::vector<core::CimProperty*>{&m_characteristics};
};

}  // namespace test

#endif  // ORVEX_TESTS_AGENT_IDENTITYMETHODFIXTURE_H_
