#include "core/CimProperty.h"

#include "Utils/Assert.h"

namespace core {
namespace {

constexpr utils::LogSource kLog{"CimProperty"};

[[noreturn]] void refuseOperation(const CimProperty& property, const char* function) {
  utils::logDebug(kLog, function, "Operation not supported by property %s (%d)",
                  property.getName().c_str(), static_cast<int>(property.getType()));
  throw utils::ENotSupported();
}

}  // namespace

void CimProperty::Listener::onModify(CimProperty*, CimProperty*) {}

void CimProperty::Listener::onVerify(CimProperty*, CimProperty*) {}

CimProperty::Listener::~Listener() = default;

void CimProperty::VerifyTypeListener::onVerify(CimProperty* property, CimProperty* newValue) {
  ORVEX_ASSERT(kLog, property != NULL);
  ORVEX_ASSERT(kLog, newValue != NULL);
  if (newValue->getType() != property->getType()) {
    throw utils::EForbidden(utils::format(
        "Property type %d doesn't support assigning value from property type %d",
        static_cast<int>(property->getType()), static_cast<int>(newValue->getType())));
  }
}

CimProperty::CimProperty(const char* name, CimInstance* owner)
    : m_name(name, owner != nullptr ? NameSource::Class : NameSource::Outside), m_owner(owner) {
  ORVEX_ASSERT(kLog, m_name.length() != 0);
  if (m_owner != nullptr) {
    enterOwner();
  }
}

CimProperty::~CimProperty() = default;

std::string CimProperty::toString() const {
  refuseOperation(*this, "core::CimProperty::toString");
}

void CimProperty::modify(CimProperty*) {
  refuseOperation(*this, "core::CimProperty::modify");
}

void CimProperty::verify(CimProperty*) {
  refuseOperation(*this, "core::CimProperty::verify");
}

void CimProperty::attachListener(Listener* listener) {
  ORVEX_ASSERT(kLog, listener != NULL);
  if (m_furtherListeners == nullptr) {
    m_furtherListeners = std::make_unique<std::vector<Listener*>>();
  }
  m_furtherListeners->push_back(listener);
}

std::size_t CimProperty::getListenerCount() const {
  return 2 + (m_furtherListeners != nullptr ? m_furtherListeners->size() : 0);
}

template <class Notify>
void CimProperty::forEachListener(Notify notify) {
  // They have no state, so that all properties share them. Never destroyed: modules have properties
  // that live longer than the objects of this library.
  static auto& isModifyEnabled = *new IsModifyEnabledListener;
  static auto& verifyType = *new VerifyTypeListener;
  notify(isModifyEnabled);
  notify(verifyType);
  if (m_furtherListeners != nullptr) {
    for (Listener* listener : *m_furtherListeners) {
      notify(*listener);
    }
  }
}

void CimProperty::notifyModify(CimProperty* newValue) {
  forEachListener([&](Listener& listener) { listener.onModify(this, newValue); });
}

void CimProperty::notifyVerify(CimProperty* newValue) {
  forEachListener([&](Listener& listener) { listener.onVerify(this, newValue); });
}

void verifyProperty(CimProperty* property, CimProperty* newValue) {
  if (property == nullptr) {
    throw utils::EInvalidParameter("Property cannot be NULL");
  }
  if (newValue == nullptr) {
    throw utils::EInvalidParameter("New Property value cannot be NULL");
  }
  utils::logDebug(kLog, "core::verifyProperty", "size: %d",
                  static_cast<int>(property->getListenerCount()));
  property->notifyVerify(newValue);
}

}  // namespace core
