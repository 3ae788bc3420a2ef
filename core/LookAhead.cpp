#include "core/LookAhead.h"

#include <utility>

namespace core {
namespace {

bool& inForce() {
  thread_local bool isInForce = false;
  return isInForce;
}

void look(const CimBroker& broker, const std::set<std::string>& classNames) {
  if (classNames.empty()) {
    return;
  }
  for (CimAgent* const agent : broker.getAgents()) {
    if (auto* const looker = dynamic_cast<FileLooker*>(agent); looker != nullptr) {
      looker->lookAhead(classNames);
    }
  }
}

}  // namespace

LookAhead::LookAhead(const CimBroker& broker, const std::set<std::string>& classNames)
    : m_before(inForce()) {
  look(broker, classNames);
  inForce() = true;
}

LookAhead::~LookAhead() {
  inForce() = m_before;
}

bool LookAhead::isInForce() {
  return inForce();
}

}  // namespace core
