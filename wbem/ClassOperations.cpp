#include "wbem/ClassOperations.h"

#include <optional>
#include <string>

#include "cimxml/AnswerWriter.h"
#include "cimxml/ClassWriter.h"
#include "cimxml/NameWriter.h"
#include "core/ClassQualifiers.h"
#include "wbem/Status.h"

namespace wbem {
namespace {

// Which declarations are written, and how. The property list is the caller's and outlives this.
class Format {
 public:
  Format(const OperationCall& call, const std::optional<cimxml::NameSet>& propertyList)
      : m_qualifiers(call.nameSpace.schema(), call.namespaces.texts()) {
    m_format.isLocalOnly = call.parameters.getBoolean("LocalOnly", true);
    m_format.hasClassOrigin = call.parameters.getBoolean("IncludeClassOrigin", false);
    if (call.parameters.getBoolean("IncludeQualifiers", true)) {
      m_format.qualifiers = &m_qualifiers;
    }
    m_format.propertyList = propertyList ? &*propertyList : nullptr;
  }
  Format(const Format&) = delete;
  Format& operator=(const Format&) = delete;
  ~Format() = default;

  [[nodiscard]] const cimxml::ClassFormat& get() const { return m_format; }

 private:
  const core::ClassQualifiers m_qualifiers;
  cimxml::ClassFormat m_format;
};

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
  const Format format(call, propertyList);
  const core::ClassDeclaration* declaration = call.nameSpace.schema().find(className);
  if (declaration == nullptr) {
    throw StatusFault(Status::NotFound, "there is no class '" + className + "' in namespace " +
                                            call.nameSpace.name());
  }
  cimxml::beginReturnValue(call.out);
  cimxml::appendClass(call.out, *declaration, format.get());
  cimxml::endReturnValue(call.out);
}

void enumerateClasses(const OperationCall& call) {
  const Format format(call, std::nullopt);
  cimxml::beginReturnValue(call.out);
  for (const core::ClassDeclaration* declaration : findSubclasses(call)) {
    cimxml::appendClass(call.out, *declaration, format.get());
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
