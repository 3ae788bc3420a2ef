#include "wbem/InstanceNames.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "cimxml/ObjectNameComparison.h"
#include "core/CimPropertyTypes.h"
#include "wbem/Scalars.h"

namespace wbem {
namespace {

using cimxml::KeyBinding;
using cimxml::ObjectName;

std::optional<ObjectName> readInstanceName(const std::string& path) {
  std::optional<ObjectName> name = cimxml::readObjectPath(path);
  return name && name->isInstance ? name : std::nullopt;
}

// Returns where the key leads. A client that does not know the class writes a reference as a text.
std::optional<ObjectName> toReference(const KeyBinding& key) {
  if (key.kind != KeyBinding::Kind::Reference) {
    return readInstanceName(key.text);
  }
  return key.reference.empty() ? std::nullopt : std::optional(key.reference.front());
}

template <class Property>
bool hasNumber(const core::CimProperty& property, const std::string& text) {
  const auto value = static_cast<const Property&>(property).getValue();
  const std::optional<decltype(+value)> number = toNumber<decltype(+value)>(text);
  return number && *number == value;
}

bool hasValue(const core::CimProperty& property, const std::string& text) {
  switch (property.getType()) {
    case core::kCimString:
      return static_cast<const core::CimPropertyString&>(property).getValue() == text;
    case core::kCimUint8:
      return hasNumber<core::CimPropertyUint8>(property, text);
    case core::kCimSint8:
      return hasNumber<core::CimPropertySint8>(property, text);
    case core::kCimUint16:
      return hasNumber<core::CimPropertyUint16>(property, text);
    case core::kCimUint32:
      return hasNumber<core::CimPropertyUint32>(property, text);
    case core::kCimUint64:
      return hasNumber<core::CimPropertyUint64>(property, text);
    case core::kCimBoolean: {
      const bool value = static_cast<const core::CimPropertyBoolean&>(property).getValue() == 1;
      return toBoolean(text) == std::optional(value);
    }
    case core::kCimDatetime:
      return static_cast<const core::CimPropertyDatetime&>(property).getValue().toCimText() == text;
    default:
      return false;
  }
}

bool hasKey(const core::CimProperty& property, const KeyBinding& key) {
  if (property.isNull()) {
    return false;
  }
  if (property.getType() == core::kCimReference) {
    const std::optional<ObjectName> name = toReference(key);
    return name && leadsTo(static_cast<const core::CimPropertyRef&>(property), *name);
  }
  return key.kind != KeyBinding::Kind::Reference && hasValue(property, key.text);
}

const KeyBinding* findKey(const std::vector<KeyBinding>& keys, const std::string& name) {
  const auto found = std::find_if(keys.begin(), keys.end(), [&name, &keys](const KeyBinding& key) {
    return core::isSameName(key.name, name) || (key.name.empty() && keys.size() == 1);
  });
  return found != keys.end() ? &*found : nullptr;
}

}  // namespace

KeyMatcher::KeyMatcher(const core::ClassDeclaration& declaration, const ObjectName& name)
    : m_keys(resolve(declaration, name)) {}

bool KeyMatcher::leadsElsewhere(const std::vector<std::string>& nameSpaces) const {
  return m_keys && std::any_of(m_keys->begin(), m_keys->end(), [&nameSpaces](const Key& key) {
           return !key.reference.empty() &&
                  findForeignName(key.reference.front(), nameSpaces) != nullptr;
         });
}

bool KeyMatcher::matches(core::CimInstance& instance) const {
  const auto matchesKey = [&instance](const Key& key) {
    const core::CimProperty* property = instance.getProperty(*key.propertyName);
    if (property == nullptr || property->isNull()) {
      return false;
    }
    if (key.reference.empty()) {
      return hasKey(*property, *key.binding);
    }
    return property->getType() == core::kCimReference &&
           leadsTo(static_cast<const core::CimPropertyRef&>(*property), key.reference.front());
  };
  return m_keys && std::all_of(m_keys->begin(), m_keys->end(), matchesKey);
}

std::optional<std::vector<KeyMatcher::Key>> KeyMatcher::resolve(
    const core::ClassDeclaration& declaration, const ObjectName& name) {
  std::vector<Key> keys;
  for (const core::PropertyDeclaration& property : declaration.properties) {
    if (!property.isKey) {
      continue;
    }
    Key key{&property.name, findKey(name.keys, property.name), {}};
    if (key.binding == nullptr) {
      return std::nullopt;
    }
    if (property.type == core::kCimReference) {
      std::optional<ObjectName> reference = toReference(*key.binding);
      if (!reference) {
        return std::nullopt;
      }
      key.reference.push_back(std::move(*reference));
    }
    keys.push_back(std::move(key));
  }
  return keys.size() == name.keys.size() ? std::optional(std::move(keys)) : std::nullopt;
}

bool isNamed(core::CimInstance& instance, const ObjectName& name) {
  if (!name.isInstance || !core::isSameName(instance.getClassName(), name.className)) {
    return false;
  }
  std::size_t keys = 0;
  core::CimPropertyList::Iterator cursor = instance.getProperties().iterator();
  for (const core::CimProperty* property = cursor.first(); property != nullptr;
       property = cursor.next()) {
    if (property->isKey()) {
      const KeyBinding* key = findKey(name.keys, property->getName());
      if (key == nullptr || !hasKey(*property, *key)) {
        return false;
      }
      ++keys;
    }
  }
  return keys == name.keys.size();
}

bool leadsTo(const core::CimPropertyRef& reference, const ObjectName& name) {
  if (reference.isNull()) {
    return false;
  }
  if (core::CimInstance* target = reference.getTarget(); target != nullptr) {
    return isNamed(*target, name);
  }
  const std::optional<ObjectName> held = readInstanceName(reference.toString());
  return held && cimxml::isSameObject(*held, name);
}

ObjectName toDeclaredName(const core::CimSchema& schema, const ObjectName& name) {
  ObjectName declared = name;
  declared.host.clear();
  declared.nameSpace.clear();
  for (KeyBinding& key : declared.keys) {
    for (ObjectName& reference : key.reference) {
      reference = toDeclaredName(schema, reference);
    }
  }
  const core::ClassDeclaration* declaration = schema.find(name.className);
  if (declaration == nullptr) {
    return declared;
  }
  declared.className = declaration->name;
  std::vector<KeyBinding> ordered;
  for (const core::PropertyDeclaration& property : declaration->properties) {
    const KeyBinding* key = property.isKey ? findKey(declared.keys, property.name) : nullptr;
    if (key != nullptr) {
      ordered.push_back(*key);
      ordered.back().name = property.name;
    }
  }
  // A name with keys of its own finds nothing, and is told so with these.
  if (ordered.size() == declared.keys.size()) {
    declared.keys = std::move(ordered);
  }
  return declared;
}

const ObjectName* findForeignName(const ObjectName& name,
                                  const std::vector<std::string>& nameSpaces) {
  const bool isOwn =
      name.nameSpace.empty() ||
      std::any_of(nameSpaces.begin(), nameSpaces.end(), [&name](const std::string& candidate) {
        return core::isSameName(candidate, name.nameSpace);
      });
  if (!isOwn) {
    return &name;
  }
  for (const KeyBinding& key : name.keys) {
    for (const ObjectName& reference : key.reference) {
      if (const ObjectName* foreign = findForeignName(reference, nameSpaces)) {
        return foreign;
      }
    }
  }
  return nullptr;
}

}  // namespace wbem
