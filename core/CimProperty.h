// A property of a CIM instance: a named value that may be null, with the listeners that guard it.
//
// A property built with an owner enters the owner's property list, in construction order; it is a
// member of the owner and dies with it. A property without an owner carries a new value or a method
// argument.
//
// The setters of the typed classes store what they are given. Values from a client go through
// verify(), which asks the listeners, and modify(), which stores. A property is not locked: whoever
// fills an instance does so before it is shared, or holds the request (see CimBroker::Request).

#ifndef ORVEX_CORE_CIMPROPERTY_H_
#define ORVEX_CORE_CIMPROPERTY_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Utils/Export.h"
#include "core/PropertyName.h"

namespace core {

class CimInstance;

// The type codes. Scalar types are even; an array has its scalar's code plus one.
enum CimType : std::uint32_t {
  kCimUint8 = 0,
  kCimSint8 = 2,
  kCimUint16 = 4,
  kCimUint16Array = 5,
  kCimUint32 = 8,
  kCimUint64 = 12,
  kCimString = 16,
  kCimStringArray = 17,
  kCimBoolean = 18,
  kCimDatetime = 24,
  kCimReference = 26,
};

class ORVEX_CORE_API CimProperty {
 public:
  // Watches changes of properties. Both arguments are properties of the same kind; the second holds
  // the new value. A listener forbids a change by throwing from onVerify.
  class ORVEX_CORE_API Listener {
   public:
    virtual void onModify(CimProperty* property, CimProperty* newValue);
    virtual void onVerify(CimProperty* property, CimProperty* newValue);
    virtual ~Listener();
  };

  // Forbids changes of a property that is not marked modifiable, and of any property whose type
  // cannot be compared.
  class ORVEX_CORE_API IsModifyEnabledListener : public Listener {
   public:
    void onVerify(CimProperty* property, CimProperty* newValue) override;
  };

  // Forbids a value of another type.
  class ORVEX_CORE_API VerifyTypeListener : public Listener {
   public:
    void onVerify(CimProperty* property, CimProperty* newValue) override;
  };

  // `name` is not empty (else utils::Exception); `owner` may be null. The name of a property with
  // an owner is one that the owner's class gives (see NameSource).
  CimProperty(const char* name, CimInstance* owner);
  CimProperty(const CimProperty&) = delete;
  CimProperty& operator=(const CimProperty&) = delete;
  virtual ~CimProperty();

  // The operations on values throw utils::ENotSupported where a type does not offer them.

  // Returns the value as text.
  [[nodiscard]] virtual std::string toString() const;
  // Returns a CimType.
  [[nodiscard]] virtual std::uint32_t getType() const = 0;
  // Takes the value and the null state of `newValue`, without a check.
  virtual void modify(CimProperty* newValue);
  // Throws utils::EForbidden or utils::EInvalidParameter when the property may not become
  // `newValue`; changes nothing.
  virtual void verify(CimProperty* newValue);

  // Returns whether toString() is the text. Defined beside the typed properties, since it spares a
  // string the copy.
  [[nodiscard]] bool hasText(const std::string& text) const;

  [[nodiscard]] const std::string& getName() const { return m_name.text(); }
  // Returns whether the other property has the same name.
  [[nodiscard]] bool isNamedAs(const CimProperty& other) const { return m_name == other.m_name; }
  [[nodiscard]] CimInstance* getOwner() const { return m_owner; }
  [[nodiscard]] bool isNull() const { return m_isNull; }
  // Takes the value away.
  void setNull() { m_isNull = true; }
  // A later property of the same instance took this one's name.
  [[nodiscard]] bool isOverridden() const { return m_isOverridden; }
  void setOverridden() { m_isOverridden = true; }
  [[nodiscard]] bool isModifyEnabled() const { return m_isModifyEnabled; }
  void setModifyEnabled(bool isEnabled) { m_isModifyEnabled = isEnabled; }
  // A key property is part of its instance's path.
  [[nodiscard]] bool isKey() const { return m_isKey; }
  void setKey() { m_isKey = true; }

  // Adds a listener behind the others. The caller owns it and keeps it alive. Throws
  // utils::Exception for null.
  void attachListener(Listener* listener);
  [[nodiscard]] std::size_t getListenerCount() const;

  // Ask all listeners, in the order in which they were attached.
  void notifyModify(CimProperty* newValue);
  void notifyVerify(CimProperty* newValue);

 protected:
  void setNullState(bool isNull) { m_isNull = isNull; }

 private:
  template <class Property>
  friend void modifyProperty(Property* property, CimProperty* newValue);

  // Adds this to the properties of the owner. Defined beside CimInstance, which builds on this.
  void enterOwner();

  template <class Notify>
  void forEachListener(Notify notify);

  const PropertyName m_name;
  CimInstance* const m_owner;
  bool m_isNull = true;
  bool m_isOverridden = false;
  bool m_isModifyEnabled = false;
  bool m_isKey = false;
  // Behind the two that every property has; null: none.
  std::unique_ptr<std::vector<Listener*>> m_furtherListeners;
};

// Checks that `property` may become `newValue`: what the typed classes' verify() does. Throws
// utils::EInvalidParameter when either is null, else what a listener throws.
ORVEX_CORE_API void verifyProperty(CimProperty* property, CimProperty* newValue);

}  // namespace core

#endif  // ORVEX_CORE_CIMPROPERTY_H_
