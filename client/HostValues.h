// What a host's answer holds, as snapshots. Not on Windows.

#ifndef ORVEX_CLIENT_HOSTVALUES_H_
#define ORVEX_CLIENT_HOSTVALUES_H_

#include <string>

#include "cimxml/Request.h"
#include "client/MethodCall.h"
#include "client/Snapshot.h"
#include "core/CimPropertyList.h"

namespace client {

// Returns a property or an output argument of a CIM type by its name, "uint16" for example. A text
// that is none of the type stays a text. An empty type is that of a text.
[[nodiscard]] PropertySnapshot snapshotOf(const std::string& name, const std::string& type,
                                          const cimxml::Value& value);

// Returns the instance, its path made from the name that it has.
[[nodiscard]] InstanceSnapshot snapshotOf(const cimxml::InstanceValue& instance);

// Returns the instance that was asked for by a name: its path has the keys in the order of the
// properties, as the host itself writes it.
[[nodiscard]] InstanceSnapshot snapshotOf(const cimxml::InstanceValue& instance,
                                          cimxml::ObjectName name);

// Returns the output arguments: those that `declared` names, NULL where the host gave none, then
// whatever else it gave. The job is left out, since an answer has it on its own.
[[nodiscard]] Properties outputsOf(const std::vector<cimxml::Parameter>& outputs,
                                   core::CimPropertyList& declared);

// Returns the path of the job among the outputs; empty when there is none.
[[nodiscard]] std::string jobPathOf(const std::vector<cimxml::Parameter>& outputs);

}  // namespace client

#endif  // ORVEX_CLIENT_HOSTVALUES_H_
