#include "wbem/QualifierOperations.h"

#include <string>

#include "cimxml/AnswerWriter.h"
#include "cimxml/QualifierWriter.h"
#include "core/Qualifiers.h"
#include "wbem/Status.h"

namespace wbem {

void getQualifier(const OperationCall& call) {
  const std::string name = call.parameters.demandString("QualifierName");
  const core::QualifierDeclaration* declaration = core::findQualifier(name);
  if (declaration == nullptr) {
    throw StatusFault(Status::NotFound, "there is no qualifier '" + name + "' in namespace " +
                                            call.nameSpace.name() +
                                            "; EnumerateQualifiers tells those that there are");
  }
  cimxml::beginReturnValue(call.out);
  cimxml::appendQualifierDeclaration(call.out, *declaration);
  cimxml::endReturnValue(call.out);
}

void enumerateQualifiers(const OperationCall& call) {
  cimxml::beginReturnValue(call.out);
  for (const core::QualifierDeclaration& declaration : core::getQualifiers()) {
    cimxml::appendQualifierDeclaration(call.out, declaration);
  }
  cimxml::endReturnValue(call.out);
}

}  // namespace wbem
