#include "wbem/QueryOperations.h"

#include "cimxml/AnswerWriter.h"
#include "wbem/InstanceOperations.h"
#include "wbem/Queries.h"

namespace wbem {

PropertyChoice choiceOf(const query::Query& query) {
  PropertyChoice choice;
  if (query.selectedProperties()) {
    choice.propertyList.emplace(*query.selectedProperties());
  }
  return choice;
}

void execQuery(const OperationCall& call) {
  const query::Query query = demandQuery(call, {"QueryLanguage", "Query", Status::InvalidQuery});
  InstanceResults results(call, Form::ObjectWithPath, choiceOf(query), call.out);
  results.setFilter(query);
  cimxml::beginReturnValue(call.out);
  collectInstancesOf(call, query.fromClass(), results);
  cimxml::endReturnValue(call.out);
}

}  // namespace wbem
