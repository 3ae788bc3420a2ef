#include "cimxml/InstanceFormat.h"

#include <algorithm>

#include "cimxml/Values.h"
#include "core/CimPropertyList.h"

namespace cimxml {
namespace {

bool isChosen(const core::PropertyDeclaration& property, const core::ClassDeclaration& declaration,
              const InstanceFormat::Options& options) {
  return (!options.isLocalOnly || core::isSameName(property.origin, declaration.name)) &&
         (options.ancestor == nullptr ||
          options.ancestor->findProperty(property.name) != nullptr) &&
         (options.propertyList == nullptr || options.propertyList->has(property.name));
}

std::string makeStart(std::string_view className) {
  std::string tag = "<INSTANCE";
  appendAttribute(tag, "CLASSNAME", className);
  tag += '>';
  return tag;
}

}  // namespace

InstanceFormat::InstanceFormat(const core::ClassDeclaration& declaration, const Options& options,
                               std::string_view nameSpace)
    : m_nameSpace(nameSpace), m_start(makeStart(declaration.name)) {
  constexpr std::size_t kUsualTag = 80;
  m_tags.reserve(kUsualTag * declaration.properties.size());
  m_fields.reserve(declaration.properties.size());
  for (const core::PropertyDeclaration& property : declaration.properties) {
    Field field{property.type,
                isChosen(property, declaration, options),
                m_tags.size(),
                0,
                0,
                property.name.size(),
                0};
    m_tags += '<';
    m_tags += getPropertyElement(property.type);
    m_tags += " NAME=\"";
    field.nameStart = m_tags.size();
    m_tags += property.name;  // an identifier, with nothing in it to escape
    m_tags += '"';
    appendTypeAttribute(m_tags, property.type, property.referenceClass);
    if (options.hasClassOrigin) {
      appendAttribute(m_tags, "CLASSORIGIN", property.origin);
    }
    m_tags += '>';
    const std::size_t end = m_tags.size();
    field.tagLength = end - field.tagStart;
    appendEndTag(m_tags, getPropertyElement(property.type));
    field.endTagLength = m_tags.size() - end;
    m_fields.push_back(field);
  }
}

bool InstanceFormat::isOf(const Field& field, const core::CimProperty& property) const {
  return field.type == property.getType() &&
         property.getName() == std::string_view(m_tags).substr(field.nameStart, field.nameLength);
}

const InstanceFormat::Field* InstanceFormat::findField(const core::CimProperty& property,
                                                       std::size_t position) const {
  if (position < m_fields.size() && isOf(m_fields[position], property)) {
    return &m_fields[position];
  }
  const auto found = std::find_if(m_fields.begin(), m_fields.end(),
                                  [&](const Field& field) { return isOf(field, property); });
  return found != m_fields.end() ? &*found : nullptr;
}

void InstanceFormat::append(Buffer& out, core::CimInstance& instance) const {
  Properties properties;
  instance.getProperties().copyTo(properties);
  append(out, properties);
}

void InstanceFormat::append(Buffer& out, const Properties& properties) const {
  out += m_start;
  std::size_t position = 0;
  for (const core::CimProperty* property : properties) {
    const Field* field = findField(*property, position++);
    if (field != nullptr && field->isChosen) {
      out.append(m_tags, field->tagStart, field->tagLength);
      appendValue(out, *property, m_nameSpace);
      out.append(m_tags, field->tagStart + field->tagLength, field->endTagLength);
    }
  }
  out += "</INSTANCE>";
}

}  // namespace cimxml
