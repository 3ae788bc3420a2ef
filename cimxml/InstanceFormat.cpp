#include <algorithm>

#include "cimxml/Values.h"
#include "cimxml/Writer.h"
#include "core/CimPropertyList.h"

namespace cimxml {
namespace {

bool isListed(const std::vector<std::string>* names, std::string_view name) {
  return names == nullptr ||
         std::any_of(names->begin(), names->end(), [name](const std::string& candidate) {
           return core::isSameName(candidate, name);
         });
}

bool isChosen(const core::PropertyDeclaration& property, const core::ClassDeclaration& declaration,
              const InstanceFormat::Options& options) {
  return (!options.isLocalOnly || core::isSameName(property.origin, declaration.name)) &&
         (options.ancestor == nullptr ||
          options.ancestor->findProperty(property.name) != nullptr) &&
         isListed(options.propertyList, property.name);
}

}  // namespace

InstanceFormat::InstanceFormat(const core::ClassDeclaration& declaration, const Options& options,
                               std::string_view nameSpace)
    : m_start("<INSTANCE"), m_nameSpace(nameSpace) {
  appendAttribute(m_start, "CLASSNAME", declaration.name);
  m_start += '>';
  m_fields.reserve(declaration.properties.size());
  for (const core::PropertyDeclaration& property : declaration.properties) {
    Field& field = m_fields.emplace_back(Field{property.name, property.type, {}});
    if (!isChosen(property, declaration, options)) {
      continue;
    }
    field.start = "<";
    field.start += getPropertyElement(property.type);
    appendAttribute(field.start, "NAME", property.name);
    appendTypeAttribute(field.start, property.type, property.referenceClass);
    if (options.hasClassOrigin) {
      appendAttribute(field.start, "CLASSORIGIN", property.origin);
    }
  }
}

const InstanceFormat::Field* InstanceFormat::findField(const core::CimProperty& property,
                                                       std::size_t position) const {
  const auto isOf = [&property](const Field& field) {
    return field.type == property.getType() && field.name == property.getName();
  };
  if (position < m_fields.size() && isOf(m_fields[position])) {
    return &m_fields[position];
  }
  const auto found = std::find_if(m_fields.begin(), m_fields.end(), isOf);
  return found != m_fields.end() ? &*found : nullptr;
}

void InstanceFormat::append(Buffer& out, core::CimInstance& instance) const {
  out += m_start;
  std::size_t position = 0;
  core::CimPropertyList::Iterator cursor = instance.getProperties().iterator();
  for (core::CimProperty* property = cursor.first(); property != nullptr;
       property = cursor.next()) {
    const Field* field = findField(*property, position++);
    if (field != nullptr && !field->start.empty()) {
      out += field->start;
      finishElement(out, getPropertyElement(field->type), *property, m_nameSpace);
    }
  }
  out += "</INSTANCE>";
}

}  // namespace cimxml
