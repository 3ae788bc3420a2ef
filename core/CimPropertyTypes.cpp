#include "core/CimPropertyTypes.h"

#include <cstddef>

#include "Utils/Assert.h"
#include "Utils/Format.h"

namespace core {
namespace {

constexpr utils::LogSource kLog{"CimPropertyTypes"};

template <class Property, class Value>
bool copyFrom(const CimProperty& source, Value& value) {
  const auto* typed = dynamic_cast<const Property*>(&source);
  if (typed != nullptr) {
    // NOLINTNEXTLINE(bugprone-signed-char-misuse): the number is taken, with its sign
    value = static_cast<Value>(typed->getValue());
  }
  return typed != nullptr;
}

template <class... Properties, class Value>
void copyFromAny(const CimProperty& source, Value& value) {
  static_cast<void>((copyFrom<Properties>(source, value) || ...));
}

}  // namespace

bool CimProperty::hasText(const std::string& text) const {
  return getType() == kCimString ? static_cast<const CimPropertyString*>(this)->getValue() == text
                                 : toString() == text;
}

template <class Property>
void modifyProperty(Property* property, CimProperty* newValue) {
  ORVEX_ASSERT(kLog, property != NULL);
  ORVEX_ASSERT(kLog, newValue != NULL);
  utils::logDebug(kLog, "core::modifyProperty", "size: %d",
                  static_cast<int>(property->getListenerCount()));
  property->notifyModify(newValue);
  property->copyValue(*newValue);
  property->setNullState(newValue->isNull());
}

template <class Value, std::uint32_t kType>
std::string CimPropertyScalar<Value, kType>::toString() const {
  if constexpr (kType == kCimSint8) {
    return CimProperty::toString();
  } else if constexpr (kType == kCimBoolean) {
    return m_value == 1 ? "1" : "0";
  } else if constexpr (kType == kCimUint64) {
    return utils::format("%llu", static_cast<unsigned long long>(m_value));
  } else {
    return utils::format("%d", static_cast<std::int32_t>(m_value));
  }
}

template <class Value, std::uint32_t kType>
void CimPropertyScalar<Value, kType>::modify(CimProperty* newValue) {
  modifyProperty(this, newValue);
}

template <class Value, std::uint32_t kType>
void CimPropertyScalar<Value, kType>::verify(CimProperty* newValue) {
  verifyProperty(this, newValue);
}

template <class Value, std::uint32_t kType>
void CimPropertyScalar<Value, kType>::copyValue(const CimProperty& source) {
  copyFromAny<CimPropertyScalar, CimPropertyUint8, CimPropertySint8, CimPropertyUint16,
              CimPropertyUint32, CimPropertyUint64, CimPropertyBoolean>(source, m_value);
}

#define ORVEX_INSTANTIATE(Value, kType)                                         \
  template class CimPropertyScalar<Value, kType>;                               \
  template ORVEX_CORE_API void modifyProperty<CimPropertyScalar<Value, kType>>( \
      CimPropertyScalar<Value, kType>*, CimProperty*)

ORVEX_INSTANTIATE(std::uint8_t, kCimUint8);
ORVEX_INSTANTIATE(std::int8_t, kCimSint8);
ORVEX_INSTANTIATE(std::uint16_t, kCimUint16);
ORVEX_INSTANTIATE(std::uint32_t, kCimUint32);
ORVEX_INSTANTIATE(std::uint64_t, kCimUint64);
ORVEX_INSTANTIATE(std::uint8_t, kCimBoolean);
#undef ORVEX_INSTANTIATE

template class CimPropertyArray<std::uint16_t, kCimUint16Array>;
template class CimPropertyArray<std::string, kCimStringArray>;

template ORVEX_CORE_API void modifyProperty<CimPropertyString>(CimPropertyString*, CimProperty*);

void CimPropertyString::CheckMinLengthListener::onVerify(CimProperty* property,
                                                         CimProperty* newValue) {
  ORVEX_ASSERT(kLog, property != NULL);
  ORVEX_ASSERT(kLog, newValue != NULL);
  const std::size_t length = newValue->toString().size();
  const std::uint32_t minimum = static_cast<CimPropertyString*>(property)->getMinLength();
  if (minimum != 0 && length < minimum) {
    throw utils::EInvalidParameter(utils::format("Length of %s property cannot be smaller then %d",
                                                 property->getName().c_str(),
                                                 static_cast<int>(minimum)));
  }
}

void CimPropertyString::CheckMaxLengthListener::onVerify(CimProperty* property,
                                                         CimProperty* newValue) {
  ORVEX_ASSERT(kLog, property != NULL);
  ORVEX_ASSERT(kLog, newValue != NULL);
  const std::size_t length = newValue->toString().size();
  const std::uint32_t maximum = static_cast<CimPropertyString*>(property)->getMaxLength();
  if (maximum != 0 && length > maximum) {
    throw utils::EInvalidParameter(utils::format("Length of %s property cannot be biger then %d",
                                                 property->getName().c_str(),
                                                 static_cast<int>(maximum)));
  }
}

CimPropertyString::CimPropertyString(const char* name, CimInstance* owner)
    : CimProperty(name, owner) {}

CimPropertyString::~CimPropertyString() = default;

void CimPropertyString::setMinLength(std::uint32_t length) {
  m_minLength = length;
  if (!m_isMinLengthChecked) {
    // As of the two that every property has.
    static auto& checkMinLength = *new CheckMinLengthListener;
    attachListener(&checkMinLength);
    m_isMinLengthChecked = true;
  }
}

void CimPropertyString::setMaxLength(std::uint32_t length) {
  m_maxLength = length;
  if (!m_isMaxLengthChecked) {
    static auto& checkMaxLength = *new CheckMaxLengthListener;
    attachListener(&checkMaxLength);
    m_isMaxLengthChecked = true;
  }
}

std::string CimPropertyString::toString() const {
  return m_value;
}

void CimPropertyString::modify(CimProperty* newValue) {
  modifyProperty(this, newValue);
}

void CimPropertyString::verify(CimProperty* newValue) {
  verifyProperty(this, newValue);
}

CimPropertyDatetime::CimPropertyDatetime(const char* name, CimInstance* owner)
    : CimProperty(name, owner) {}

CimPropertyDatetime::~CimPropertyDatetime() = default;

}  // namespace core
