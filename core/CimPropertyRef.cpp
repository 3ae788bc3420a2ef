#include "core/CimPropertyRef.h"

#include "core/CimInstance.h"

namespace core {

CimPropertyRef::CimPropertyRef(const char* name, CimInstance* owner) : CimProperty(name, owner) {}

CimPropertyRef::CimPropertyRef(const char* name, CimInstance* owner, const char* referenceClass)
    : CimProperty(name, owner), m_referenceClass(referenceClass) {}

CimPropertyRef::~CimPropertyRef() = default;

std::string CimPropertyRef::toString() const {
  return m_target != nullptr ? m_target->getPath() : m_text;
}

}  // namespace core
