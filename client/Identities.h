// The software identities that are served: firmware files that can be installed, and components
// that are. Everything here is a copy, valid for good.

#ifndef ORVEX_CLIENT_IDENTITIES_H_
#define ORVEX_CLIENT_IDENTITIES_H_

#include <string>
#include <vector>

#include "client/Connection.h"

namespace client {

struct Identity {
  std::string path;  // its object path
  std::string instanceId;
  std::string name;  // of a file, its absolute path
  std::string version;
  std::vector<std::string> types;    // "IMG_PXE"
  std::vector<std::string> devices;  // PCI vendor and device: "1af4:1041"
  bool isFile = false;               // a firmware file that can be installed

  // Returns how messages call it.
  [[nodiscard]] const std::string& label() const { return isFile ? name : instanceId; }
};

struct IdentityList {
  std::vector<Identity> identities;
  // What was said about files that are no firmware, each once; nothing where a host says it in its
  // own log.
  std::vector<std::string> skipped;
  bool isRemote = false;  // the files are not those of this process
};

// Returns the identities in the order in which they are served. Throws Fault when nobody serves
// their class.
[[nodiscard]] IdentityList readIdentities(Connection& connection);

// Returns the one that a text names: by its object path or its InstanceID; a firmware file also by
// a path to it, or by its file name where no other has that. Looks at the file system unless the
// files are remote. Throws Fault, which lists what there is, for a text that names none or several.
[[nodiscard]] const Identity& findIdentity(const IdentityList& list, const std::string& text);

struct Comparison {
  std::string adapter;  // identifier, "0000:03:00"
  std::string state;    // "newer" for example
};

// The state of a file that no association connects with the adapter.
inline constexpr const char* kNotForAdapter = "not for it";

struct ComparedIdentity {
  Identity identity;
  std::vector<Comparison> adapters;  // all adapters, in the order in which they are served
};

// Returns the firmware files, each with every adapter.
[[nodiscard]] std::vector<ComparedIdentity> compareFiles(Connection& connection,
                                                         const std::vector<Identity>& identities);

}  // namespace client

#endif  // ORVEX_CLIENT_IDENTITIES_H_
