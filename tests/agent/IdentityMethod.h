// What the tests of the two methods that take a software identity share: the arguments, the call,
// and the method's records.

#ifndef ORVEX_TESTS_AGENT_IDENTITYMETHOD_H_
#define ORVEX_TESTS_AGENT_IDENTITYMETHOD_H_

#include <algorithm>
#include <gmock/gmock.h>
#include <optional>
#include <string>
#include <vector>

#include "agent/Orvex_SoftwareInstallationService.h"
#include "core/CimPropertyRef.h"
#include "tests/agent/FakeJobFactory.h"
#include "tests/agent/FakeSiblings.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Throws.h"

namespace test {

class IdentityMethod : public testing::Test {
 protected:
  // The method's name, and the arguments in the order in which it wants them.
  IdentityMethod(std::string method, std::vector<core::CimProperty*> in,
                 std::vector<core::CimProperty*> out)
      : m_method(std::move(method)), m_in(std::move(in)), m_out(std::move(out)) {
    m_siblings.addResource("firmware", "file:///image.rom");
    m_source.setText(m_siblings.addSoftwareIdentity());
    m_target.setText(m_siblings.addPort("0000:03:00.0"));
    m_factory->created = &m_created;
  }

  // Invokes the method with the arguments but those of the names.
  std::uint32_t invokeWithout(const std::vector<std::string>& names) {
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
    m_log.clear();
    m_job = nullptr;
    return m_service.invokeMethod(m_method, &in, &out, &m_job);
  }

  std::uint32_t invoke() { return invokeWithout({}); }

  auto invokingWithout(const std::vector<std::string>& names) {
    return [this, names] { static_cast<void>(invokeWithout(names)); };
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

  // Invokes, and expects a return value without a job, and the records from the arguments' check
  // on.
  void expectReturn(std::uint32_t expected, const std::vector<std::string>& records) {
    EXPECT_EQ(invoke(), expected);
    EXPECT_EQ(m_job, nullptr);
    EXPECT_EQ(messages(), startedWith(records));
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
        EXPECT_EQ(record.function, "Orvex_SoftwareInstallationService::" + m_method);
        EXPECT_EQ(record.level, LogLevel::Debug);
        messages.push_back(record.message);
      }
    }
    return messages;
  }

  std::string source() const { return m_source.toString(); }
  std::string target() const { return m_target.toString(); }

  LogCapture m_log;
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

 private:
  const std::string m_method;
  const std::vector<core::CimProperty*> m_in;
  const std::vector<core::CimProperty*> m_out;
};

// An answer of the job class, and what a method makes of it.
struct JobAnswer {
  std::int32_t result;
  std::uint32_t returnValue;
  std::string before;  // the record's text round the target's path; empty: none
  std::string after;
};

inline void PrintTo(const JobAnswer& answer, std::ostream* stream) {
  *stream << answer.result;
}

// The answers that mean the same to both methods; an answer that is no refusal is a success, which
// has the return value 0 here.
inline const JobAnswer kJobAnswers[] = {
    {2, 4097, "Target is not supported by service for '", "'"},
    {3, 4099, "Downgrade is not supported by service for '", "'. Execute with FORCE INSTALL flag."},
    {4, 2, "Unspecified Error for '", "'"},
    {5, 4106, "Not applicable for target for '", "' "},
    {100, 5, "Invalid URI for '", "'"},
    {101, 5, "URI does not exists for '", "'"},
    {103, 2, "Job cannot read the URI for '", "'"},
    {104, 2, "Other job is in progress '", "'"},
    {105, 6, "Target '", "' is in update state at this moment"},
    {106, 4, "Failed to start job for '", "' "},
    {0, 0, "", ""},
    {6, 0, "", ""},
    {102, 0, "", ""},
    {107, 0, "", ""},
    {-1, 0, "", ""},
};

}  // namespace test

#endif  // ORVEX_TESTS_AGENT_IDENTITYMETHOD_H_
