// The steps that the methods of the installation service share. What differs between the methods is
// passed in as data (see Method).

#ifndef ORVEX_AGENT_INSTALLSTEPS_H_
#define ORVEX_AGENT_INSTALLSTEPS_H_

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Utils/Exception.h"
#include "cim/MethodSignatures.h"
#include "core/CimPropertyList.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"

namespace agent {

// The input or output arguments of a call. An argument of the wrong type counts as missing.
class Arguments {
 public:
  // `list` may be null: then every argument is missing.
  explicit Arguments(core::CimPropertyList* list) : m_list(list) {}

  // Throws utils::EUnspecifiedError "Expected %s argument".
  template <class Property>
  Property& expect(const char* name) const {
    auto* argument = dynamic_cast<Property*>(m_list != nullptr ? m_list->get(name) : nullptr);
    if (argument == nullptr) {
      throw utils::EUnspecifiedError(utils::format("Expected %s argument", name));
    }
    return *argument;
  }

 private:
  core::CimPropertyList* m_list;
};

// Throws utils::EUnspecifiedError when one of the arguments is null: the first of them.
void expectValues(std::initializer_list<const core::CimProperty*> arguments);

// What tells one method from another.
struct Method {
  const char* function;               // what it logs under
  const char* bothTargets;            // the fault of a request with a target and a collection
  std::string_view lookUp;            // what its records of things that cannot be found begin with
  std::string_view jobResult;         // its record of the job class's answer; "%d" stands for that
  std::string_view invalidParameter;  // its record of the answer "invalid parameter"
  bool create;                        // whether it makes a job
};

extern const Method kInstallFromUri;
extern const Method kInstallFromSoftwareIdentity;
extern const Method kCheckSoftwareIdentity;

// Returns whether the options ask for an update and for nothing that the service cannot do.
[[nodiscard]] bool areOptionsSupported(const std::vector<std::uint16_t>& options);

// Of a target and a collection exactly one must have a value, else throws utils::EUnspecifiedError.
// Returns false for a collection, to which nothing can be installed.
[[nodiscard]] bool isForTarget(const Method& method, const core::CimProperty& source,
                               const core::CimProperty& target,
                               const core::CimProperty& collection);

// Returns the URI of the file of the software identity at `sourcePath`; nothing when there is no
// such identity, or it is no firmware image that can be installed. Throws utils::ESyntaxError for a
// malformed path.
[[nodiscard]] std::optional<std::string> findUri(const Method& method,
                                                 const std::string& sourcePath);

// A request whose arguments have been read.
struct Update {
  std::string uri;
  std::string targetPath;
  std::vector<std::uint16_t> installOptions;
  std::vector<std::string> installOptionsValues;
};

// Resolves the target to a port, has the job class check the image and create the job where the
// method does, and translates its answer. Returns a cim::InstallReturn, for a success kJobStarted
// or, of a method that makes no job, kCompletedWithNoError. The job that was started is stored in
// `job`, unless that is null. Throws utils::ESyntaxError for a malformed target path.
[[nodiscard]] std::uint32_t processUpdate(const Method& method, const Update& update,
                                          core::CimInstance** job);

}  // namespace agent

#endif  // ORVEX_AGENT_INSTALLSTEPS_H_
