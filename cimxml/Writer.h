// CIM in XML as DSP0201 has it, appended to a buffer in one pass: values, names, instances, classes
// and the answers round them. Nothing is built in between, so a buffer that is kept needs no memory
// after the first answers.
//
// Text is escaped, and bytes that no XML document may hold become U+FFFD. Callers hold the broker's
// request while they pass instances.

#ifndef ORVEX_CIMXML_WRITER_H_
#define ORVEX_CIMXML_WRITER_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "cimxml/NameSet.h"
#include "cimxml/ObjectName.h"
#include "core/CimInstance.h"
#include "core/CimProperty.h"
#include "core/ClassDeclaration.h"

namespace cimxml {

using Buffer = std::string;

// The properties in force of an instance, as core::CimPropertyList::copyTo gives them: who writes
// an instance and its name asks for them once.
using Properties = std::vector<core::CimProperty*>;

void appendEscaped(Buffer& out, std::string_view text);

// ---- answers ----

// <?xml ...><CIM ...><MESSAGE ...><SIMPLERSP><IMETHODRESPONSE NAME="..."> and its end.
void beginOperationAnswer(Buffer& out, std::string_view messageId, std::string_view operation);
void endOperationAnswer(Buffer& out);
// The same round a METHODRESPONSE.
void beginMethodAnswer(Buffer& out, std::string_view messageId, std::string_view method);
void endMethodAnswer(Buffer& out);
// <ERROR CODE="..." DESCRIPTION="..."/>, in the place of a return value.
void appendError(Buffer& out, unsigned code, std::string_view description);
// <IRETURNVALUE> and its end.
void beginReturnValue(Buffer& out);
void endReturnValue(Buffer& out);
// <RETURNVALUE PARAMTYPE="uint32"><VALUE>...</VALUE></RETURNVALUE>
void appendMethodReturnValue(Buffer& out, std::uint32_t value);
// An output parameter of a method: <PARAMVALUE NAME= PARAMTYPE=>...; NULL is written without value.
// References get the namespace.
void appendOutputParameter(Buffer& out, const core::CimProperty& value, std::string_view nameSpace);
void appendReferenceParameter(Buffer& out, std::string_view name, core::CimInstance& target,
                              std::string_view nameSpace);
// An output parameter of an operation: <PARAMVALUE NAME= PARAMTYPE=><VALUE>...</VALUE></PARAMVALUE>
void appendOperationParameter(Buffer& out, std::string_view name, std::string_view type,
                              std::string_view text);

// ---- names ----

// <LOCALNAMESPACEPATH><NAMESPACE NAME="root"/>...
void appendLocalNamespacePath(Buffer& out, std::string_view nameSpace);
// <NAMESPACEPATH><HOST>...</HOST><LOCALNAMESPACEPATH>...
void appendNamespacePath(Buffer& out, std::string_view host, std::string_view nameSpace);
// <CLASSNAME NAME="..."/>
void appendClassName(Buffer& out, std::string_view className);
// <INSTANCENAME CLASSNAME="..."><KEYBINDING ...>; keys that are references get the namespace.
void appendInstanceName(Buffer& out, core::CimInstance& instance, std::string_view nameSpace);
// The same of a name. References in it keep the namespace and the host that they have; with an
// empty `nameSpace`, one that has none is written as its name alone.
void appendInstanceName(Buffer& out, const ObjectName& name, std::string_view nameSpace);
void appendInstanceName(Buffer& out, std::string_view className, const Properties& properties,
                        std::string_view nameSpace);
// <INSTANCEPATH>: namespace path and instance name.
void appendInstancePath(Buffer& out, core::CimInstance& instance, std::string_view host,
                        std::string_view nameSpace);
void appendInstancePath(Buffer& out, std::string_view className, const Properties& properties,
                        std::string_view host, std::string_view nameSpace);
// The same for a class.
void appendClassPath(Buffer& out, std::string_view className, std::string_view host,
                     std::string_view nameSpace);

// ---- instances ----

// How the instances of one class are written for one request: the properties that are chosen, each
// with its opening tag made once.
class InstanceFormat {
 public:
  struct Options {
    // Leaves out what the class inherits.
    bool isLocalOnly = false;
    bool hasClassOrigin = false;
    // Null: all of them. Unknown names choose nothing.
    const NameSet* propertyList = nullptr;
    // The properties of this class alone; null: all. For an enumeration that is not deep.
    const core::ClassDeclaration* ancestor = nullptr;
  };

  InstanceFormat(const core::ClassDeclaration& declaration, const Options& options,
                 std::string_view nameSpace);

  // <INSTANCE CLASSNAME="..."><PROPERTY ...>... The instance is one of the class; a property that
  // the class does not declare is left out.
  void append(Buffer& out, core::CimInstance& instance) const;
  void append(Buffer& out, const Properties& properties) const;

 private:
  struct Field {
    core::CimType type;
    bool isChosen;
    // Where they stand in m_tags: <PROPERTY NAME="Caption" TYPE="string">, the name in it, and
    // behind it </PROPERTY>.
    std::size_t tagStart;
    std::size_t tagLength;
    std::size_t nameStart;
    std::size_t nameLength;
    std::size_t endTagLength;
  };

  [[nodiscard]] bool isOf(const Field& field, const core::CimProperty& property) const;
  // Returns null for a property that the class does not declare.
  [[nodiscard]] const Field* findField(const core::CimProperty& property,
                                       std::size_t position) const;

  std::string m_nameSpace;
  std::string m_start;          // <INSTANCE CLASSNAME="...">
  std::string m_tags;           // of all fields, one behind the other
  std::vector<Field> m_fields;  // by the position of the property among those in force
};

// ---- classes ----

struct ClassFormat {
  bool isLocalOnly = false;
  bool hasQualifiers = true;
  bool hasClassOrigin = false;
  const NameSet* propertyList = nullptr;  // null: all
};

// <CLASS NAME="..." SUPERCLASS="...">: qualifiers (Association, Key, In, Out), properties, methods.
void appendClass(Buffer& out, const core::ClassDeclaration& declaration, const ClassFormat& format);

}  // namespace cimxml

#endif  // ORVEX_CIMXML_WRITER_H_
