#include "wbem/PullOperations.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <utility>

#include "cimxml/AnswerWriter.h"
#include "wbem/AssociationOperations.h"
#include "wbem/InstanceOperations.h"
#include "wbem/Status.h"

namespace wbem {
namespace {

using Collect = void (*)(const OperationCall& call, InstanceResults& results);

void refuseUnsupported(const OperationParameters& parameters) {
  for (const char* name : {"FilterQueryLanguage", "FilterQuery"}) {
    if (!parameters.getString(name).value_or("").empty()) {
      throw StatusFault(Status::FilteredEnumerationNotSupported,
                        "enumerations cannot be filtered by a query");
    }
  }
  if (parameters.getBoolean("ContinueOnError", false)) {
    throw StatusFault(Status::ContinuationOnErrorNotSupported,
                      "an enumeration ends at the first error");
  }
}

PullEnumerations::Owner ownerOf(const OperationCall& call, PullEnumerations::Kind kind) {
  return {call.caller.user, call.nameSpace.name(), kind};
}

void appendPosition(std::string& out, const PullEnumerations::Part& part) {
  cimxml::appendOperationParameter(out, "EndOfSequence", "boolean", part.isLast ? "TRUE" : "FALSE");
  cimxml::appendOperationParameter(out, "EnumerationContext", "string", part.context);
}

void open(const OperationCall& call, Form form, Collect collect) {
  refuseUnsupported(call.parameters);
  const std::chrono::seconds time =
      call.enumerations.demandTime(call.parameters.getUint32("OperationTimeout"));
  const std::uint32_t count = call.parameters.getUint32("MaxObjectCount").value_or(0);
  PullEnumerations::Results results;
  InstanceResults collected(call, form, readPropertyChoice(call.parameters), results.text);
  collect(call, collected);
  results.ends = std::move(collected.ends());
  const auto kind = form == Form::InstanceWithPath ? PullEnumerations::Kind::Instances
                                                   : PullEnumerations::Kind::Paths;
  cimxml::beginReturnValue(call.out);
  const PullEnumerations::Part part =
      call.enumerations.open(ownerOf(call, kind), std::move(results), time, count, call.out);
  cimxml::endReturnValue(call.out);
  appendPosition(call.out, part);
}

void pull(const OperationCall& call, PullEnumerations::Kind kind) {
  const std::string context = call.parameters.demandString("EnumerationContext");
  const std::optional<std::uint32_t> count = call.parameters.getUint32("MaxObjectCount");
  if (!count) {
    throw StatusFault(Status::InvalidParameter, "parameter MaxObjectCount: is required");
  }
  cimxml::beginReturnValue(call.out);
  const PullEnumerations::Part part =
      call.enumerations.pull(ownerOf(call, kind), context, *count, call.out);
  cimxml::endReturnValue(call.out);
  appendPosition(call.out, part);
}

}  // namespace

void openEnumerateInstances(const OperationCall& call) {
  open(call, Form::InstanceWithPath, collectInstances);
}

void openEnumerateInstancePaths(const OperationCall& call) {
  open(call, Form::InstancePath, collectInstances);
}

void openReferenceInstances(const OperationCall& call) {
  open(call, Form::InstanceWithPath, collectReferences);
}

void openReferenceInstancePaths(const OperationCall& call) {
  open(call, Form::InstancePath, collectReferences);
}

void openAssociatorInstances(const OperationCall& call) {
  open(call, Form::InstanceWithPath, collectAssociators);
}

void openAssociatorInstancePaths(const OperationCall& call) {
  open(call, Form::InstancePath, collectAssociators);
}

void pullInstancesWithPath(const OperationCall& call) {
  pull(call, PullEnumerations::Kind::Instances);
}

void pullInstancePaths(const OperationCall& call) {
  pull(call, PullEnumerations::Kind::Paths);
}

void closeEnumeration(const OperationCall& call) {
  call.enumerations.close(call.caller.user, call.nameSpace.name(),
                          call.parameters.demandString("EnumerationContext"));
}

}  // namespace wbem
