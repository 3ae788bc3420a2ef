#include "core/CimInstance.h"

#include "Utils/Assert.h"
#include "Utils/Conversions.h"

namespace core {
namespace {

constexpr utils::LogSource kLog{"CimInstance"};

bool isQuoted(const CimProperty& property) {
  return property.getType() == kCimString || property.getType() == kCimReference;
}

}  // namespace

CimInstance::CimInstance() = default;

std::uint32_t CimInstance::InstallFromSoftwareIdentity(CimPropertyList* in, CimPropertyList* out,
                                                       CimInstance** job) {
  return refuseMethod(in, out, job);
}

std::uint32_t CimInstance::InstallFromURI(CimPropertyList* in, CimPropertyList* out,
                                          CimInstance** job) {
  return refuseMethod(in, out, job);
}

std::uint32_t CimInstance::CheckSoftwareIdentity(CimPropertyList* in, CimPropertyList* out,
                                                 CimInstance** job) {
  return refuseMethod(in, out, job);
}

void CimInstance::modify(CimPropertyList& newValues) {
  CimPropertyList::Iterator cursor = newValues.iterator();
  for (CimProperty* value = cursor.first(); value != nullptr; value = cursor.next()) {
    CimProperty* property = getProperty(value->getName());
    ORVEX_ASSERT(kLog, property != NULL);
    property->verify(value);
  }
  for (CimProperty* value = cursor.first(); value != nullptr; value = cursor.next()) {
    CimProperty* property = getProperty(value->getName());
    ORVEX_ASSERT(kLog, property != NULL);
    property->modify(value);
  }
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the interface passes it by value
std::uint32_t CimInstance::invokeMethod(std::string name, CimPropertyList* in, CimPropertyList* out,
                                        CimInstance** job) {
  constexpr const char* kFunction = "core::CimInstance::invokeMethod";
  utils::logDebug(kLog, kFunction, "Checking, if %s method is supported", name.c_str());
  const auto method = m_methods.find(name);
  if (method == m_methods.end()) {
    throw utils::ENotSupported(utils::format("Method %s is not support by %s class", name.c_str(),
                                             getClassName().c_str()));
  }
  utils::logDebug(kLog, kFunction, "...is executed");
  return (this->*method->second)(in, out, job);
}

CimInstance::~CimInstance() = default;

bool CimInstance::offersMethod(const std::string& name) const {
  const auto method = m_methods.find(name);
  return method != m_methods.end() && method->second != &CimInstance::refuseMethod;
}

void CimProperty::enterOwner() {
  m_owner->getProperties().add(this);
}

std::string CimInstance::getPath() {
  std::string result = getClassName() + ".";
  CimPropertyList::Iterator cursor = m_properties.iterator();
  for (CimProperty* property = cursor.first(); property != nullptr; property = cursor.next()) {
    if (property->isKey()) {
      const std::string value = property->toString();
      result +=
          property->getName() + "=" + (isQuoted(*property) ? utils::quote(value) : value) + ",";
    }
  }
  ORVEX_ASSERT(kLog, result.size() > 0);
  if (result.ends_with(',')) {
    result.pop_back();
  }
  return result;
}

void CimInstance::addMethod(const std::string& name, Method method) {
  if (utils::isDebugLogged()) {
    utils::logDebug(kLog, "core::CimInstance::addMethod", "Adding new %s method for %s class",
                    name.c_str(), getClassName().c_str());
  }
  m_methods[name] = method;
}

void CimInstance::declareMethod(const std::string& name) {
  m_methods.try_emplace(name, &CimInstance::refuseMethod);
}

std::uint32_t CimInstance::refuseMethod(CimPropertyList* /*in*/, CimPropertyList* /*out*/,
                                        CimInstance** /*job*/) {
  throw utils::ENotSupported("Method is not supported");
}

}  // namespace core
