// The properties of an instance, or the arguments of a method, in the order in which they came.
//
// The list owns none of them. A property added under a name that is in use overrides the earlier
// one: look-ups and walks see the new one only, the earlier one stays in the list, marked.

#ifndef ORVEX_CORE_CIMPROPERTYLIST_H_
#define ORVEX_CORE_CIMPROPERTYLIST_H_

#include <string>
#include <vector>

#include "Utils/Containers.h"
#include "Utils/Export.h"
#include "core/CimProperty.h"

namespace core {

// Passes over overridden properties.
class OverridenPropertiesSkippingIterator
    : public utils::SkippingIteratorImplementation<CimProperty*,
                                                   OverridenPropertiesSkippingIterator> {
 public:
  using SkippingIteratorImplementation::SkippingIteratorImplementation;

  static bool isSkipped(const CimProperty* property) { return property->isOverridden(); }
};

class ORVEX_CORE_API CimPropertyList : public utils::SafeList<CimProperty*> {
 public:
  CimPropertyList();
  ~CimPropertyList() override;

  // Returns a cursor over the properties in force.
  Iterator iterator() override;

  // Makes `properties` those in force, in their order, under one lock. Keeps its capacity: a writer
  // of many instances calls this and allocates next to nothing.
  void copyTo(std::vector<CimProperty*>& properties) const;

  // Throws utils::Exception for null.
  void add(CimProperty* newProperty);
  // Returns the property in force under the name, null when there is none.
  [[nodiscard]] CimProperty* get(const std::string& name);

  // utils::SafeList
  void clear() override;
  bool remove(CimProperty* property) override;

 private:
  // The last property of each name, in their order. More than half of the properties of an instance
  // are overridden: a writer need not look at them.
  std::vector<CimProperty*> m_latest ORVEX_GUARDED_BY(m_lock);
};

}  // namespace core

#endif  // ORVEX_CORE_CIMPROPERTYLIST_H_
