#include "cimxml/ClassWriter.h"

#include "cimxml/QualifierWriter.h"
#include "cimxml/Values.h"

namespace cimxml {
namespace {

// What the declaration of one class is written with.
class ClassWriter {
 public:
  ClassWriter(Buffer& out, const core::ClassDeclaration& declaration, const ClassFormat& format)
      : m_out(out), m_declaration(declaration), m_format(format) {}

  void append() {
    m_out += "<CLASS";
    appendAttribute(m_out, "NAME", m_declaration.name);
    if (!m_declaration.superclass.empty()) {
      appendAttribute(m_out, "SUPERCLASS", m_declaration.superclass);
    }
    m_out += '>';
    if (m_format.qualifiers != nullptr) {
      appendQualifiers(m_format.qualifiers->ofClass(m_declaration), true);
    }
    for (const core::PropertyDeclaration& property : m_declaration.properties) {
      if (isOffered(property.origin) && isListed(property.name)) {
        appendProperty(property);
      }
    }
    for (const core::MethodDeclaration& method : m_declaration.methods) {
      if (isOffered(method.origin)) {
        appendMethod(method);
      }
    }
    m_out += "</CLASS>";
  }

 private:
  [[nodiscard]] bool isLocal(const std::string& origin) const {
    return core::isSameName(origin, m_declaration.name);
  }

  [[nodiscard]] bool isOffered(const std::string& origin) const {
    return !m_format.isLocalOnly || isLocal(origin);
  }

  [[nodiscard]] bool isListed(const std::string& name) const {
    return m_format.propertyList == nullptr || m_format.propertyList->has(name);
  }

  void appendQualifiers(const core::ClassQualifiers::List& qualifiers, bool isOfLocal) {
    for (const core::Qualifier& qualifier : qualifiers) {
      appendQualifier(m_out, qualifier, !isOfLocal);
    }
  }

  void appendOrigin(const std::string& origin) {
    if (m_format.hasClassOrigin) {
      appendAttribute(m_out, "CLASSORIGIN", origin);
    }
    if (!isLocal(origin)) {
      m_out += " PROPAGATED=\"true\"";
    }
  }

  void appendProperty(const core::PropertyDeclaration& property) {
    const std::string_view element = getPropertyElement(property.type);
    m_out += '<';
    m_out += element;
    appendAttribute(m_out, "NAME", property.name);
    appendTypeAttribute(m_out, property.type, property.referenceClass);
    appendOrigin(property.origin);
    m_out += '>';
    if (m_format.qualifiers != nullptr) {
      appendQualifiers(m_format.qualifiers->ofProperty(m_declaration, property),
                       isLocal(property.origin));
    }
    appendEndTag(m_out, element);
  }

  void appendMethod(const core::MethodDeclaration& method) {
    m_out += "<METHOD";
    appendAttribute(m_out, "NAME", method.name);
    appendAttribute(m_out, "TYPE", core::getTypeName(method.returnType));
    appendOrigin(method.origin);
    m_out += '>';
    if (m_format.qualifiers != nullptr) {
      appendQualifiers(m_format.qualifiers->ofMethod(m_declaration, method),
                       isLocal(method.origin));
    }
    for (const core::ParameterDeclaration& parameter : method.parameters) {
      appendParameter(method, parameter);
    }
    appendEndTag(m_out, "METHOD");
  }

  void appendParameter(const core::MethodDeclaration& method,
                       const core::ParameterDeclaration& parameter) {
    const std::string_view element = getParameterElement(parameter.type);
    m_out += '<';
    m_out += element;
    appendAttribute(m_out, "NAME", parameter.name);
    appendTypeAttribute(m_out, parameter.type, parameter.referenceClass);
    m_out += '>';
    if (m_format.qualifiers != nullptr) {
      appendQualifiers(m_format.qualifiers->ofParameter(method, parameter), isLocal(method.origin));
    }
    appendEndTag(m_out, element);
  }

  Buffer& m_out;
  const core::ClassDeclaration& m_declaration;
  const ClassFormat& m_format;
};

}  // namespace

void appendClass(Buffer& out, const core::ClassDeclaration& declaration,
                 const ClassFormat& format) {
  ClassWriter(out, declaration, format).append();
}

}  // namespace cimxml
