// The steps that the methods of the installation service share. What differs between the methods is
// passed in as data (see Records).

#ifndef ORVEX_AGENT_INSTALLSTEPS_H_
#define ORVEX_AGENT_INSTALLSTEPS_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Utils/Exception.h"
#include "cim/MethodSignatures.h"
#include "core/CimPropertyList.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"

namespace install {

// The input arguments of a call. An argument of the wrong type counts as missing.
class Arguments {
 public:
  // `list` may be null: then every argument is missing.
  explicit Arguments(core::CimPropertyList* list) : m_list(list) {}

  // Throws utils::EUnspecifiedError "Expected %s argument".
  template <class Property>
  const Property& expect(const char* name) const {
    const auto* argument =
        dynamic_cast<const Property*>(m_list != nullptr ? m_list->get(name) : nullptr);
    if (argument == nullptr) {
      throw utils::EUnspecifiedError(utils::format("Expected %s argument", name));
    }
    return *argument;
  }

 private:
  core::CimPropertyList* m_list;
};

// Throws utils::EUnspecifiedError when the argument is null.
void expectValue(const core::CimProperty& argument);

// Returns whether the options ask for an update and for nothing that the service cannot do.
[[nodiscard]] bool areOptionsSupported(const std::vector<std::uint16_t>& options);

// What a method's steps log. "%s" in a text stands for the target's object path.
struct Records {
  const char* function;
  std::string_view targetNotFound;
  std::string_view jobResult;  // "%d" stands for the result
};

extern const Records kInstallFromUriRecords;

// A request whose arguments have been read.
struct Update {
  std::string uri;
  std::string targetPath;
  std::vector<std::uint16_t> installOptions;
  std::vector<std::string> installOptionsValues;
};

// Resolves the target to a port, has the job class create the job and translates its answer.
// Returns a cim::InstallReturn; with kJobStarted the job is stored in `job`, unless that is null.
// Throws utils::ESyntaxError for a malformed target path.
[[nodiscard]] std::uint32_t updateTarget(const Update& update, const Records& records,
                                         core::CimInstance** job);

}  // namespace install

#endif  // ORVEX_AGENT_INSTALLSTEPS_H_
