// The typed properties, one class for each CIM data type that the schema uses.

#ifndef ORVEX_CORE_CIMPROPERTYTYPES_H_
#define ORVEX_CORE_CIMPROPERTYTYPES_H_

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "Utils/Datetime.h"
#include "Utils/Export.h"
#include "core/CimProperty.h"

namespace core {

// A number or a truth value. `Value` is how it is stored.
template <class Value, std::uint32_t kType>
class CimPropertyScalar : public CimProperty {
 public:
  CimPropertyScalar(const char* name, CimInstance* owner) : CimProperty(name, owner) {}

  void setValue(Value value) {
    m_value = value;
    setNullState(false);
  }
  [[nodiscard]] Value getValue() const { return m_value; }

  [[nodiscard]] std::string toString() const override;
  [[nodiscard]] std::uint32_t getType() const override { return kType; }
  void modify(CimProperty* newValue) override;
  void verify(CimProperty* newValue) override;

  // Takes over the value of a property that has a number or a truth value; of another type, as much
  // of it as there is room for. Leaves the value as it is for any other property.
  void copyValue(const CimProperty& source);

 private:
  Value m_value{};
};

extern template class ORVEX_CORE_API CimPropertyScalar<std::uint8_t, kCimUint8>;
extern template class ORVEX_CORE_API CimPropertyScalar<std::int8_t, kCimSint8>;
extern template class ORVEX_CORE_API CimPropertyScalar<std::uint16_t, kCimUint16>;
extern template class ORVEX_CORE_API CimPropertyScalar<std::uint32_t, kCimUint32>;
extern template class ORVEX_CORE_API CimPropertyScalar<std::uint64_t, kCimUint64>;
extern template class ORVEX_CORE_API CimPropertyScalar<std::uint8_t, kCimBoolean>;

using CimPropertyUint8 = CimPropertyScalar<std::uint8_t, kCimUint8>;
using CimPropertySint8 = CimPropertyScalar<std::int8_t, kCimSint8>;  // has no text
using CimPropertyUint16 = CimPropertyScalar<std::uint16_t, kCimUint16>;
using CimPropertyUint32 = CimPropertyScalar<std::uint32_t, kCimUint32>;  // prints as signed
using CimPropertyUint64 = CimPropertyScalar<std::uint64_t, kCimUint64>;
// Stored as a byte, 1 for true. Prints "1" for the byte 1 and "0" for any other.
using CimPropertyBoolean = CimPropertyScalar<std::uint8_t, kCimBoolean>;

class ORVEX_CORE_API CimPropertyString : public CimProperty {
 public:
  // Rejects a text shorter than the property's minimum length; a minimum of 0 is none.
  class ORVEX_CORE_API CheckMinLengthListener : public Listener {
   public:
    void onVerify(CimProperty* property, CimProperty* newValue) override;
  };

  // Rejects a text longer than the property's maximum length; a maximum of 0 is none.
  class ORVEX_CORE_API CheckMaxLengthListener : public Listener {
   public:
    void onVerify(CimProperty* property, CimProperty* newValue) override;
  };

  CimPropertyString(const char* name, CimInstance* owner);
  ~CimPropertyString() override;

  void setValue(std::string value) {
    m_value = std::move(value);
    setNullState(false);
  }
  [[nodiscard]] const std::string& getValue() const { return m_value; }

  // Set a limit in characters, 0 for none, and have verify() enforce it from now on.
  void setMinLength(std::uint32_t length);
  void setMaxLength(std::uint32_t length);
  [[nodiscard]] std::uint32_t getMinLength() const { return m_minLength; }
  [[nodiscard]] std::uint32_t getMaxLength() const { return m_maxLength; }

  [[nodiscard]] std::string toString() const override;
  [[nodiscard]] std::uint32_t getType() const override { return kCimString; }
  void modify(CimProperty* newValue) override;
  void verify(CimProperty* newValue) override;

  // Takes over the text of any property that has one.
  void copyValue(const CimProperty& source) { m_value = source.toString(); }

 private:
  std::string m_value;
  std::uint32_t m_minLength = 0;
  std::uint32_t m_maxLength = 0;
  bool m_isMinLengthChecked = false;
  bool m_isMaxLengthChecked = false;
};

// An ordered list of values.
template <class Element, std::uint32_t kType>
class CimPropertyArray : public CimProperty {
 public:
  CimPropertyArray(const char* name, CimInstance* owner) : CimProperty(name, owner) {}

  // Takes over a whole list.
  void setValue(std::vector<Element> values) {
    m_values = std::move(values);
    setNullState(false);
  }
  // Appends.
  void addValue(Element value) {
    m_values.push_back(std::move(value));
    setNullState(false);
  }
  [[nodiscard]] const std::vector<Element>& getValue() const { return m_values; }

  [[nodiscard]] std::uint32_t getType() const override { return kType; }

  // Makes the value the empty list, which is not null.
  virtual void clear() {
    m_values.clear();
    setNullState(false);
  }

 private:
  std::vector<Element> m_values;
};

extern template class ORVEX_CORE_API CimPropertyArray<std::uint16_t, kCimUint16Array>;
extern template class ORVEX_CORE_API CimPropertyArray<std::string, kCimStringArray>;

using CimPropertyUint16_arr = CimPropertyArray<std::uint16_t, kCimUint16Array>;
using CimPropertyString_arr = CimPropertyArray<std::string, kCimStringArray>;

// A moment or an interval. Holds the moment of its construction, although it is null.
class ORVEX_CORE_API CimPropertyDatetime : public CimProperty {
 public:
  CimPropertyDatetime(const char* name, CimInstance* owner);
  ~CimPropertyDatetime() override;

  void setValue(const utils::Datetime& value) {
    m_value = value;
    setNullState(false);
  }
  [[nodiscard]] const utils::Datetime& getValue() const { return m_value; }

  [[nodiscard]] std::uint32_t getType() const override { return kCimDatetime; }

 private:
  utils::Datetime m_value;
};

// Makes `property` what `newValue` is, without a check: the body of the typed modify(). A
// listener's onModify is told first. Throws utils::Exception when either is null.
template <class Property>
void modifyProperty(Property* property, CimProperty* newValue);

}  // namespace core

#endif  // ORVEX_CORE_CIMPROPERTYTYPES_H_
