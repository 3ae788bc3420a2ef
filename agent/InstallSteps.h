// What the methods of the installation service do alike. Nothing here logs: the records of the
// methods name the service's source file, and so stand in that.

#ifndef ORVEX_AGENT_INSTALLSTEPS_H_
#define ORVEX_AGENT_INSTALLSTEPS_H_

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "Utils/Exception.h"
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

// Returns whether the options ask for an update and for nothing that the service cannot do.
[[nodiscard]] bool areOptionsSupported(const std::vector<std::uint16_t>& options);

// Returns the identity of the port that an update of the target is for: of a controller, its first.
// Empty when it has none, nothing when the target is of a class that cannot be updated.
[[nodiscard]] std::optional<std::string> findTargetPort(core::CimInstance& target);

// Returns the URI of the resource of the firmware file, empty when there is none; the last one
// counts.
[[nodiscard]] std::string findResourceUri(const std::string& fileId);

// Returns the texts with the separator between them.
[[nodiscard]] std::string join(const std::vector<std::string>& texts, char separator);

}  // namespace agent

#endif  // ORVEX_AGENT_INSTALLSTEPS_H_
