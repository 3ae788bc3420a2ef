#include "wbem/PullOperations.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <utility>

#include "cimxml/AnswerWriter.h"
#include "wbem/AssociationOperations.h"
#include "wbem/InstanceOperations.h"
#include "wbem/Queries.h"
#include "wbem/QueryOperations.h"
#include "wbem/Status.h"

namespace wbem {
namespace {

using Collect = void (*)(const OperationCall& call, InstanceResults& results);

// What every opening says of the enumeration itself.
struct Opening {
  std::chrono::seconds time;
  std::uint32_t count;
};

Opening readOpening(const OperationCall& call) {
  if (call.parameters.getBoolean("ContinueOnError", false)) {
    throw StatusFault(Status::ContinuationOnErrorNotSupported,
                      "an enumeration ends at the first error");
  }
  return {call.enumerations.demandTime(call.parameters.getUint32("OperationTimeout")),
          call.parameters.getUint32("MaxObjectCount").value_or(0)};
}

PullEnumerations::Owner ownerOf(const OperationCall& call, PullEnumerations::Kind kind) {
  return {call.caller.user, call.nameSpace.name(), kind};
}

void appendPosition(std::string& out, const PullEnumerations::Part& part) {
  cimxml::appendOperationParameter(out, "EndOfSequence", "boolean", part.isLast ? "TRUE" : "FALSE");
  cimxml::appendOperationParameter(out, "EnumerationContext", "string", part.context);
}

// Answers with the first results and keeps the others.
void deliver(const OperationCall& call, PullEnumerations::Kind kind, const Opening& opening,
             PullEnumerations::Results results) {
  cimxml::beginReturnValue(call.out);
  const PullEnumerations::Part part = call.enumerations.open(
      ownerOf(call, kind), std::move(results), opening.time, opening.count, call.out);
  cimxml::endReturnValue(call.out);
  appendPosition(call.out, part);
}

void open(const OperationCall& call, Form form, Collect collect) {
  const Opening opening = readOpening(call);
  PullEnumerations::Results results;
  InstanceResults collected(call, form, readPropertyChoice(call.parameters), results.text);
  if (std::optional<query::Query> filter = readFilter(call)) {
    collected.setFilter(std::move(*filter));
  }
  collect(call, collected);
  results.ends = std::move(collected.ends());
  deliver(call,
          form == Form::InstanceWithPath ? PullEnumerations::Kind::Instances
                                         : PullEnumerations::Kind::Paths,
          opening, std::move(results));
}

// The class of what a query selects: the query's own, with those properties and no methods, since a
// result is not called.
void appendResultClass(const OperationCall& call, const query::Query& query) {
  core::ClassDeclaration result = call.nameSpace.demandClass(query.fromClass());
  result.methods.clear();
  const PropertyChoice choice = choiceOf(query);
  cimxml::ClassFormat format;
  format.propertyList = choice.propertyList ? &*choice.propertyList : nullptr;
  cimxml::appendClassParameter(call.out, "QueryResultClass", result, format);
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

void openQueryInstances(const OperationCall& call) {
  const Opening opening = readOpening(call);
  const bool isClassWanted = call.parameters.getBoolean("ReturnQueryResultClass", false);
  const query::Query query =
      demandQuery(call, {"FilterQueryLanguage", "FilterQuery", Status::QueryFeatureNotSupported});
  PullEnumerations::Results results;
  InstanceResults collected(call, Form::Instance, choiceOf(query), results.text);
  collected.setFilter(query);
  collectInstancesOf(call, query.fromClass(), collected);
  results.ends = std::move(collected.ends());
  deliver(call, PullEnumerations::Kind::QueriedInstances, opening, std::move(results));
  if (isClassWanted) {
    appendResultClass(call, query);
  }
}

void pullInstancesWithPath(const OperationCall& call) {
  pull(call, PullEnumerations::Kind::Instances);
}

void pullInstancePaths(const OperationCall& call) {
  pull(call, PullEnumerations::Kind::Paths);
}

void pullInstances(const OperationCall& call) {
  pull(call, PullEnumerations::Kind::QueriedInstances);
}

void closeEnumeration(const OperationCall& call) {
  call.enumerations.close(call.caller.user, call.nameSpace.name(),
                          call.parameters.demandString("EnumerationContext"));
}

}  // namespace wbem
