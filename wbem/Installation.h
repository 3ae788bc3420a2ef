// What the audit says of an installation of firmware: what was put where, in the place of what.
//
// The methods and classes are those that an agent for software installation serves (see
// cim/MethodSignatures.h): InstallFromURI, InstallFromSoftwareIdentity, Orvex_SoftwareIdentity.

#ifndef ORVEX_WBEM_INSTALLATION_H_
#define ORVEX_WBEM_INSTALLATION_H_

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "core/CimBroker.h"
#include "core/CimPropertyList.h"

namespace wbem {

// An empty text is one that is not known.
struct Installation {
  std::string adapter;      // or its port, as the target names it: "0000:03:00.0"
  std::string file;         // a path; what the source names where it is no file
  std::string sha256;       // of the bytes that were installed, or why there is none
  std::string options;      // "5, 32768=IMG_PXE": InstallOptions with their values
  std::string oldVersions;  // of the components of the adapter: "IMG_PXE 0.1, IMG_UEFI 1.2"
  // Of the file; when the job has ended, of the adapter.
  std::string newVersions;
  std::string job;  // its InstanceID
};

// Returns the path of the file that a method reads, by its arguments: of one that installs firmware
// or checks whether it could be; empty for none. Any thread.
[[nodiscard]] std::string findFile(const std::string& method, core::CimPropertyList& arguments);

// Returns what the arguments of a method say; null for a method that installs nothing. Any thread.
[[nodiscard]] std::optional<Installation> describeInstallation(const std::string& method,
                                                               core::CimPropertyList& arguments);

// Fills in the versions: what is installed on the adapter, which a port of it may stand for, and
// what the file holds, where the inventory lists it. Where they cannot be told, why. The caller
// holds the broker's request, and has a core::LookAhead on this thread where it must not wait.
void fillInVersions(core::CimBroker& broker, Installation& installation);

// Fills in what the content of the file holds, where an agent knows such content (see
// core/FirmwareReader.h). Where none does and one has failed, why. Any thread.
void fillInContent(core::CimBroker& broker, std::span<const std::uint8_t> content,
                   Installation& installation);

// Returns the versions of what is installed on an adapter, in the same way.
[[nodiscard]] std::string describeInstalled(core::CimBroker& broker, const std::string& adapter);

// Returns what is known as a record has it, each text with its name. Any thread.
[[nodiscard]] std::vector<std::pair<std::string, std::string>> toDetails(
    const Installation& installation);

}  // namespace wbem

#endif  // ORVEX_WBEM_INSTALLATION_H_
