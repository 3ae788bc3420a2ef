#include "query/PropertyBinding.h"

#include <utility>

#include "Utils/NearestName.h"
#include "query/QueryFault.h"

namespace query {
namespace {

Sort sortOf(core::CimType type) {
  switch (type) {
    case core::kCimUint8:
    case core::kCimSint8:
    case core::kCimUint16:
    case core::kCimUint16Array:
    case core::kCimUint32:
    case core::kCimUint64:
      return Sort::Number;
    case core::kCimString:
    case core::kCimStringArray:
      return Sort::Text;
    case core::kCimBoolean:
      return Sort::Boolean;
    case core::kCimDatetime:
      return Sort::Datetime;
    case core::kCimReference:
      return Sort::Reference;
  }
  return Sort::Unknown;
}

PropertyType typeOf(const core::PropertyDeclaration& property) {
  return {sortOf(property.type), core::isArray(property.type),
          std::string(core::getTypeName(property.type))};
}

std::string suggest(const std::string& written, const std::vector<std::string>& names) {
  const std::string nearest = utils::findNearestName(written, names);
  return nearest.empty() ? "" : "; did you mean " + nearest + "?";
}

// An embedded instance is declared as a text.
bool mayHoldInstance(const PropertyType& type) {
  return !type.isArray && (type.sort == Sort::Unknown || type.sort == Sort::Text);
}

}  // namespace

PropertyBinding::PropertyBinding(std::string_view text, const core::CimSchema& schema,
                                 ClassName& from, std::string alias)
    : m_text(text), m_schema(schema), m_alias(std::move(alias)) {
  if (!from.name.empty()) {
    m_from = &bindClass(from);
  }
}

void PropertyBinding::refuse(std::size_t offset, const std::string& reason) const {
  throw QueryFault(QueryFault::Kind::Invalid, m_text, offset, reason);
}

const core::ClassDeclaration& PropertyBinding::bindClass(ClassName& className) const {
  const core::ClassDeclaration* declaration = m_schema.find(className.name);
  if (declaration == nullptr) {
    std::vector<std::string> names;
    for (const core::ClassDeclaration* each : m_schema.getDescendants("")) {
      names.push_back(each->name);
    }
    throw QueryFault(
        QueryFault::Kind::UnknownClass, m_text, className.offset,
        "there is no class '" + toShown(className.name) + "'" + suggest(className.name, names));
  }
  className.name = declaration->name;
  return *declaration;
}

bool PropertyBinding::isOwnName(const Step& step) const {
  if (step.scope || m_from == nullptr) {
    return false;
  }
  return core::isSameName(step.name, m_from->name) ||
         (!m_alias.empty() && core::isSameName(step.name, m_alias));
}

PropertyType PropertyBinding::bind(Chain& chain) const {
  if (isOwnName(chain.steps.front())) {
    chain.steps.erase(chain.steps.begin());
  }
  PropertyType type{Sort::Instance, false, ""};
  bool isOwn = true;
  for (Step& step : chain.steps) {
    if (!isOwn && !mayHoldInstance(type)) {
      refuse(step.offset, "what stands before '" + toShown(step.name) + "' is " +
                              (type.isArray ? "an array of " : "of type ") + type.name +
                              " and holds no instance");
    }
    if (step.scope) {
      type = bindScoped(step, isOwn);
    } else {
      type = isOwn && m_from != nullptr ? bindOwn(step) : bindEmbedded(step);
    }
    isOwn = false;
  }
  if (chain.indexing != Indexing::None) {
    if (!type.isArray && type.sort != Sort::Unknown) {
      refuse(chain.offset, chain.written() + ": there are no elements, since it is no array");
    }
    type.isArray = type.isArray && chain.indexing == Indexing::All;
  }
  return type;
}

void PropertyBinding::bindSelected(Chain& chain) const {
  if (chain.isAll) {
    if (chain.steps.size() != 1 || !isOwnName(chain.steps.front())) {
      refuse(chain.offset, "'.*' stands behind " + m_from->name +
                               (m_alias.empty() ? "" : " or " + m_alias) + " alone");
    }
    return;
  }
  static_cast<void>(bind(chain));
  if (chain.steps.size() != 1) {
    refuse(chain.offset, chain.steps.empty()
                             ? "a property is expected, and here is the class"
                             : "properties of an embedded instance are not selected by "
                               "themselves; select " +
                                   chain.steps.front().name);
  }
  if (chain.indexing != Indexing::None) {
    refuse(chain.offset,
           "elements are not selected by themselves; select " + chain.steps.front().name);
  }
}

PropertyType PropertyBinding::bindOwn(Step& step) const {
  const core::PropertyDeclaration* property = m_from->findProperty(step.name);
  if (property == nullptr) {
    refuseProperty(step, *m_from);
  }
  step.name = property->name;
  return typeOf(*property);
}

PropertyType PropertyBinding::bindScoped(Step& step, bool isOwn) const {
  const core::ClassDeclaration& scope = bindClass(*step.scope);
  if (isOwn && m_from != nullptr && !m_schema.isA(scope.name, m_from->name) &&
      !m_schema.isA(m_from->name, scope.name)) {
    refuse(step.scope->offset,
           "no " + m_from->name + " is a " + scope.name + ": neither class is above the other");
  }
  const core::PropertyDeclaration* property = scope.findProperty(step.name);
  if (property == nullptr) {
    refuseProperty(step, scope);
  }
  step.name = property->name;
  return typeOf(*property);
}

// The instance is of a class that shows later: some class must have the property.
PropertyType PropertyBinding::bindEmbedded(Step& step) const {
  std::vector<std::string> names;
  for (const core::ClassDeclaration* declaration : m_schema.getDescendants("")) {
    if (const core::PropertyDeclaration* property = declaration->findProperty(step.name)) {
      step.name = property->name;
      return {};
    }
    for (const core::PropertyDeclaration& property : declaration->properties) {
      names.push_back(property.name);
    }
  }
  refuse(step.offset,
         "no class has a property '" + toShown(step.name) + "'" + suggest(step.name, names));
}

void PropertyBinding::refuseProperty(const Step& step,
                                     const core::ClassDeclaration& declaration) const {
  const std::string below = &declaration == m_from ? findBelow(step) : "";
  std::vector<std::string> names;
  for (const core::PropertyDeclaration& property : declaration.properties) {
    names.push_back(property.name);
  }
  refuse(step.offset, "class " + declaration.name + " has no property '" + toShown(step.name) +
                          "'" + (below.empty() ? suggest(step.name, names) : below));
}

// Returns a hint at a class below that has the property.
std::string PropertyBinding::findBelow(const Step& step) const {
  for (const core::ClassDeclaration* below : m_schema.getDescendants(m_from->name)) {
    if (const core::PropertyDeclaration* property = below->findProperty(step.name)) {
      return "; " + below->name + " has it: write " + below->name + "::" + property->name;
    }
  }
  return "";
}

}  // namespace query
