#include "core/ClassDeclaration.h"

#include <algorithm>

namespace core {
namespace {

template <class Declaration>
const Declaration* findByName(const std::vector<Declaration>& declarations, std::string_view name) {
  const auto found = std::find_if(
      declarations.begin(), declarations.end(),
      [name](const Declaration& candidate) { return isSameName(candidate.name, name); });
  return found != declarations.end() ? &*found : nullptr;
}

}  // namespace

const PropertyDeclaration* ClassDeclaration::findProperty(std::string_view propertyName) const {
  return findByName(properties, propertyName);
}

const MethodDeclaration* ClassDeclaration::findMethod(std::string_view methodName) const {
  return findByName(methods, methodName);
}

std::string_view getTypeName(CimType type) {
  switch (type) {
    case kCimUint8:
      return "uint8";
    case kCimSint8:
      return "sint8";
    case kCimUint16:
    case kCimUint16Array:
      return "uint16";
    case kCimUint32:
      return "uint32";
    case kCimUint64:
      return "uint64";
    case kCimString:
    case kCimStringArray:
      return "string";
    case kCimBoolean:
      return "boolean";
    case kCimDatetime:
      return "datetime";
    case kCimReference:
      return "reference";
  }
  return {};
}

}  // namespace core
