// Reference properties: how an association points at its ends.
//
// A reference has a target instance, or a text where there is none. It does not own its target,
// which must outlive it.

#ifndef ORVEX_CORE_CIMPROPERTYREF_H_
#define ORVEX_CORE_CIMPROPERTYREF_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "Utils/Export.h"
#include "core/CimProperty.h"

namespace core {

class ORVEX_CORE_API CimPropertyRef : public CimProperty {
 public:
  CimPropertyRef(const char* name, CimInstance* owner);
  ~CimPropertyRef() override;

  void setTarget(CimInstance* target) {
    m_target = target;
    setNullState(false);
  }
  [[nodiscard]] CimInstance* getTarget() const { return m_target; }
  void setText(std::string text) {
    m_text = std::move(text);
    setNullState(false);
  }

  // Returns the target's object path; without a target, the text.
  [[nodiscard]] std::string toString() const override;
  [[nodiscard]] std::uint32_t getType() const override { return kCimReference; }

  // Returns the name of the class to which the target belongs; empty where none is fixed.
  [[nodiscard]] std::string_view getReferenceClass() const { return m_referenceClass; }

 protected:
  // `referenceClass` is a text that stays.
  CimPropertyRef(const char* name, CimInstance* owner, const char* referenceClass);

 private:
  CimInstance* m_target = nullptr;
  std::string m_text;
  const char* const m_referenceClass = "";
};

// A reference to an instance of T, a schema class, which must be complete where the reference is
// constructed.
template <class T>
class CimPropertyRefT : public CimPropertyRef {
 public:
  CimPropertyRefT(const char* name, CimInstance* owner)
      : CimPropertyRef(name, owner, className()) {}

 private:
  static constexpr const char* className() {
    static_assert(
        requires { sizeof(T); }, "include the header of the class");
    if constexpr (requires { T::kClassName; }) {
      return T::kClassName;
    } else {
      return "";
    }
  }
};

}  // namespace core

#endif  // ORVEX_CORE_CIMPROPERTYREF_H_
