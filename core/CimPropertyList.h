// The properties of an instance, or the arguments of a method, in the order in which they came.
//
// The list owns none of them. A property added under a name that is in use overrides the earlier
// one: look-ups and walks see the new one only, the earlier one stays in the list, marked.

#ifndef ORVEX_CORE_CIMPROPERTYLIST_H_
#define ORVEX_CORE_CIMPROPERTYLIST_H_

#include <cstddef>
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

  // Makes `properties` those that a walk gives, as they stand. Keeps its capacity: a writer of many
  // instances calls this and allocates next to nothing.
  void copyTo(std::vector<CimProperty*>& properties) const;

  // Throws utils::Exception for null. The names and the list are locked one after the other. What
  // is added through the base is walked, but overrides nothing and is not found by its name.
  void add(CimProperty* newProperty);
  // Returns the property in force under the name, null when there is none.
  [[nodiscard]] CimProperty* get(const std::string& name);

  // As in the base, and forget the names, too.
  void clear();
  bool remove(CimProperty* property);

 protected:
  // The property in force under each name, the one added last at the end. Locked like a map; a list
  // is short, so that a search costs less than an order would.
  class ORVEX_CORE_API Index {
   public:
    Index();
    Index(const Index&) = delete;
    Index& operator=(const Index&) = delete;
    ~Index();

    // Has the property override the one in force under its name, if there is one. Throws
    // utils::Exception where that is null, and changes nothing.
    void enter(CimProperty* newProperty);
    // Stores a property, which may be null, under the name of another that lives as long.
    void set(const CimProperty& named, CimProperty* property);
    // Returns null for a name that is absent.
    [[nodiscard]] CimProperty* get(const std::string& name) const;

    void clear();
    void forget(const CimProperty* property);

    // Makes `properties` those in force, if `changes` is how often the list changed by way of this
    // class. Returns whether it is.
    [[nodiscard]] bool copyTo(std::vector<CimProperty*>& properties, std::size_t changes) const;

   private:
    struct Entry {
      const CimProperty* named;
      CimProperty* property;
    };

    std::vector<Entry>::iterator find(const CimProperty& named) ORVEX_REQUIRES(m_lock);

    std::vector<Entry> m_entries ORVEX_GUARDED_BY(m_lock);
    std::size_t m_changes ORVEX_GUARDED_BY(m_lock) = 0;
    mutable utils::Mutex m_lock;
  };

  [[nodiscard]] Index& index() { return m_index; }

 private:
  // More than half of the properties of an instance are overridden: a writer need not look at them.
  Index m_index;
};

}  // namespace core

#endif  // ORVEX_CORE_CIMPROPERTYLIST_H_
