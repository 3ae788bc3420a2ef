// Classes and instances that a user names: found, or missed with words that say what there is.

#ifndef ORVEX_CLIENT_SERVEDCLASSES_H_
#define ORVEX_CLIENT_SERVEDCLASSES_H_

#include <string>

#include "client/Connection.h"
#include "core/CimPath.h"

namespace client {

// Returns the instances of a class, none for a class that is not known.
[[nodiscard]] Instances getInstances(Connection& connection, const std::string& className);

// Returns the instances of a class. Throws Fault, which lists the classes that are served, when
// this one is neither served nor declared.
[[nodiscard]] Instances demandInstances(Connection& connection, const std::string& className);

// Returns what there is to say of a class. Throws Fault, which lists the classes that are served,
// when this one is not declared.
[[nodiscard]] ClassDescription demandClass(Connection& connection, const std::string& className);

// Reads an object path that the user gave. Throws Fault (usage) for a malformed one.
[[nodiscard]] core::CimPath parseObjectPath(const std::string& text);

// Returns the instance at the path. Throws as refuseMissing when there is none.
[[nodiscard]] InstanceSnapshot demandInstance(Connection& connection, const core::CimPath& path);

// Throws Fault, which says where to look for what there is instead of the instance at the path: the
// classes that are served when its class is neither served nor declared.
[[noreturn]] void refuseMissing(Connection& connection, const std::string& path);

}  // namespace client

#endif  // ORVEX_CLIENT_SERVEDCLASSES_H_
