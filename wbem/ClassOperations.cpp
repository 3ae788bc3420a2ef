#include "wbem/ClassOperations.h"

#include <optional>
#include <string>

#include "cimxml/AnswerWriter.h"
#include "cimxml/ClassWriter.h"
#include "cimxml/NameWriter.h"
#include "wbem/Status.h"

namespace wbem {
namespace {

// The property list is the caller's and outlives what is returned.
cimxml::ClassFormat readFormat(const OperationParameters& parameters,
                               const std::optional<cimxml::NameSet>& propertyList) {
  cimxml::ClassFormat format;
  format.isLocalOnly = parameters.getBoolean("LocalOnly", true);
  format.hasQualifiers = parameters.getBoolean("IncludeQualifiers", true);
  format.hasClassOrigin = parameters.getBoolean("IncludeClassOrigin", false);
  format.propertyList = propertyList ? &*propertyList : nullptr;
  return format;
}

// Returns the classes below ClassName, all or those directly below; those at the top when there is
// none.
const core::CimSchema::Classes& findSubclasses(const OperationCall& call) {
  const std::string className = call.parameters.getClassName("ClassName").value_or("");
  if (!className.empty()) {
    static_cast<void>(call.nameSpace.demandClass(className));
  }
  const bool isDeep = call.parameters.getBoolean("DeepInheritance", false);
  const core::CimSchema& schema = call.nameSpace.schema();
  return isDeep ? schema.getDescendants(className) : schema.getSubclasses(className);
}

}  // namespace

void getClass(const OperationCall& call) {
  const std::string className = call.parameters.demandClassName("ClassName");
  const auto propertyList = call.parameters.getNames("PropertyList");
  const cimxml::ClassFormat format = readFormat(call.parameters, propertyList);
  const core::ClassDeclaration* declaration = call.nameSpace.schema().find(className);
  if (declaration == nullptr) {
    throw StatusFault(Status::NotFound, "there is no class '" + className + "' in namespace " +
                                            call.nameSpace.name());
  }
  cimxml::beginReturnValue(call.out);
  cimxml::appendClass(call.out, *declaration, format);
  cimxml::endReturnValue(call.out);
}

void enumerateClasses(const OperationCall& call) {
  const cimxml::ClassFormat format = readFormat(call.parameters, std::nullopt);
  cimxml::beginReturnValue(call.out);
  for (const core::ClassDeclaration* declaration : findSubclasses(call)) {
    cimxml::appendClass(call.out, *declaration, format);
  }
  cimxml::endReturnValue(call.out);
}

void enumerateClassNames(const OperationCall& call) {
  cimxml::beginReturnValue(call.out);
  for (const core::ClassDeclaration* declaration : findSubclasses(call)) {
    cimxml::appendClassName(call.out, declaration->name);
  }
  cimxml::endReturnValue(call.out);
}

}  // namespace wbem
