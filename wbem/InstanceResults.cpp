#include "wbem/InstanceResults.h"

#include <string_view>
#include <utility>

#include "cimxml/ClassWriter.h"
#include "cimxml/NameWriter.h"

namespace wbem {
namespace {

struct FormParts {
  Form form;
  std::string_view element;  // round the parts; empty: none
  bool hasName;
  bool hasPath;
  bool hasInstance;
};

constexpr FormParts kForms[] = {
    {Form::Instance, "", false, false, true},
    {Form::NamedInstance, "VALUE.NAMEDINSTANCE", true, false, true},
    {Form::InstanceName, "", true, false, false},
    {Form::ObjectWithPath, "VALUE.OBJECTWITHPATH", false, true, true},
    {Form::ObjectPath, "OBJECTPATH", false, true, false},
    {Form::InstanceWithPath, "VALUE.INSTANCEWITHPATH", false, true, true},
    {Form::InstancePath, "", false, true, false},
};

constexpr const FormParts& partsOf(Form form) {
  return kForms[static_cast<std::size_t>(form)];
}

constexpr bool areFormsInOrder() {
  std::size_t index = 0;
  for (const FormParts& parts : kForms) {
    if (static_cast<std::size_t>(parts.form) != index++) {
      return false;
    }
  }
  return true;
}
static_assert(areFormsInOrder());

void appendStart(std::string& out, std::string_view element) {
  if (!element.empty()) {
    out += '<';
    out += element;
    out += '>';
  }
}

void appendEnd(std::string& out, std::string_view element) {
  if (!element.empty()) {
    out += "</";
    out += element;
    out += '>';
  }
}

}  // namespace

PropertyChoice readPropertyChoice(const OperationParameters& parameters) {
  PropertyChoice choice;
  choice.options.isLocalOnly = parameters.getBoolean("LocalOnly", false);
  choice.options.hasClassOrigin = parameters.getBoolean("IncludeClassOrigin", false);
  choice.propertyList = parameters.getNames("PropertyList");
  // Instances have no qualifiers of their own.
  static_cast<void>(parameters.getBoolean("IncludeQualifiers", false));
  return choice;
}

InstanceResults::InstanceResults(const OperationCall& call, Form form, PropertyChoice choice,
                                 std::string& out)
    : m_call(call), m_form(form), m_choice(std::move(choice)), m_out(out) {}

InstanceResults::~InstanceResults() = default;

void InstanceResults::add(const Namespace& nameSpace, const ServedClass& served,
                          core::CimInstance& instance) {
  if (!served.isCrossing) {
    append(nameSpace, served, instance);
    return;
  }
  CrossingInstance crossing(m_call.namespaces, *served.declaration, instance);
  append(nameSpace, served, crossing);
}

void InstanceResults::addClass(const core::ClassDeclaration& declaration) {
  const FormParts& parts = partsOf(m_form);
  appendStart(m_out, parts.element);
  cimxml::appendClassPath(m_out, declaration.name, m_call.host, m_call.nameSpace.name());
  if (parts.hasInstance) {
    cimxml::ClassFormat format;
    const core::ClassQualifiers qualifiers(m_call.nameSpace.schema(), m_call.namespaces.texts());
    if (m_call.parameters.getBoolean("IncludeQualifiers", false)) {
      format.qualifiers = &qualifiers;
    }
    format.hasClassOrigin = m_choice.options.hasClassOrigin;
    format.propertyList = m_choice.propertyList ? &*m_choice.propertyList : nullptr;
    cimxml::appendClass(m_out, declaration, format);
  }
  appendEnd(m_out, parts.element);
  m_ends.push_back(m_out.size());
}

void InstanceResults::append(const Namespace& nameSpace, const ServedClass& served,
                             core::CimInstance& instance) {
  const FormParts& parts = partsOf(m_form);
  const std::string& className = served.declaration->name;
  instance.getProperties().copyTo(m_properties);
  const std::size_t start = m_out.size();
  appendStart(m_out, parts.element);
  if (parts.hasName) {
    cimxml::appendInstanceName(m_out, className, m_properties, nameSpace.name());
  }
  if (parts.hasPath) {
    const std::size_t path = m_out.size();
    cimxml::appendInstancePath(m_out, className, m_properties, m_call.host, nameSpace.name());
    if (m_passesOverRepeated && !m_written.emplace(m_out.substr(path)).second) {
      m_out.resize(start);
      return;
    }
  }
  if (parts.hasInstance) {
    formatOf(nameSpace, served).append(m_out, m_properties);
  }
  appendEnd(m_out, parts.element);
  m_ends.push_back(m_out.size());
}

const cimxml::InstanceFormat& InstanceResults::formatOf(const Namespace& nameSpace,
                                                        const ServedClass& served) {
  Namespace::Format& format = m_formats[&served];
  if (format == nullptr) {
    const Namespace::FormatOptions& options = m_choice.options;
    format = m_choice.propertyList
                 ? std::make_shared<const cimxml::InstanceFormat>(
                       *served.declaration,
                       cimxml::InstanceFormat::Options{options.isLocalOnly, options.hasClassOrigin,
                                                       &*m_choice.propertyList, options.ancestor},
                       nameSpace.name())
                 : nameSpace.format(*served.declaration, options);
  }
  return *format;
}

}  // namespace wbem
