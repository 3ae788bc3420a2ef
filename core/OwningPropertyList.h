// A property list together with its properties, which no instance has: the arguments of a method
// call, or new values for an instance. For one thread.

#ifndef ORVEX_CORE_OWNINGPROPERTYLIST_H_
#define ORVEX_CORE_OWNINGPROPERTYLIST_H_

#include <memory>
#include <utility>
#include <vector>

#include "Utils/Export.h"
#include "core/CimPropertyList.h"

namespace core {

class ORVEX_CORE_API OwningPropertyList {
 public:
  OwningPropertyList();
  OwningPropertyList(const OwningPropertyList&) = delete;
  OwningPropertyList& operator=(const OwningPropertyList&) = delete;
  ~OwningPropertyList();

  // Adds a property behind the others and owns it from now on. Throws utils::Exception for null.
  void add(std::unique_ptr<CimProperty> property);
  // Adds a property of the type, NULL until it is given a value, and returns it.
  template <class Property>
  Property& add(const char* name) {
    auto property = std::make_unique<Property>(name, nullptr);
    Property& added = *property;
    add(std::move(property));
    return added;
  }

  // Returns the list of them, for whoever takes one: it owns nothing and dies with this.
  [[nodiscard]] CimPropertyList& list() { return m_list; }

 private:
  std::vector<std::unique_ptr<CimProperty>> m_properties;
  CimPropertyList m_list;
};

}  // namespace core

#endif  // ORVEX_CORE_OWNINGPROPERTYLIST_H_
