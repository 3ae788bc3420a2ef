#include "core/CimAgent.h"

#include <utility>

#include "Utils/Exception.h"
#include "Utils/Log.h"

namespace core {
namespace {

constexpr utils::LogSource kLog{"CimAgent"};

}  // namespace

CimAgent::CimAgent(std::string name) : m_name(std::move(name)) {}

// The interface passes names by value, and these operations only look at them.
// NOLINTBEGIN(performance-unnecessary-value-param)

bool CimAgent::hasClass(std::string className) {
  return m_classes.contains(className);
}

InstanceList::Iterator CimAgent::getInstances(std::string className) {
  constexpr const char* kFunction = "core::CimAgent::getInstances";
  utils::logDebug(kLog, kFunction, "[%s] Finding class: %s", m_name.c_str(), className.c_str());
  if (!m_classes.contains(className)) {
    throw utils::Exception("class %s does not exists", className.c_str());
  }
  CimClass* cimClass = m_classes.get(className);
  utils::logDebug(kLog, kFunction, "[%s] Get instance of %s class", m_name.c_str(),
                  className.c_str());
  return cimClass->getInstances();
}

// NOLINTEND(performance-unnecessary-value-param)

CimAgent::~CimAgent() = default;

std::vector<std::string> CimAgent::getClassNames() const {
  std::vector<std::string> names;
  for (const CimClass* cimClass : m_classes.values()) {
    names.push_back(cimClass->getName());
  }
  return names;
}

}  // namespace core
