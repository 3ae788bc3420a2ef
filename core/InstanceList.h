// The instances of one class, as its provider keeps them. The list owns them.

#ifndef ORVEX_CORE_INSTANCELIST_H_
#define ORVEX_CORE_INSTANCELIST_H_

#include "Utils/Containers.h"
#include "Utils/Export.h"
#include "core/CimInstance.h"

namespace core {

// Passes over instances that are marked deleted; each step reads the mark afresh.
class DeletedInstancesSkippingIterator
    : public utils::SkippingIteratorImplementation<CimInstance*, DeletedInstancesSkippingIterator> {
 public:
  using SkippingIteratorImplementation::SkippingIteratorImplementation;

  static bool isSkipped(const CimInstance* instance) { return instance->isDeleted(); }
};

class ORVEX_CORE_API InstanceList : public utils::SafeList<CimInstance*> {
 public:
  InstanceList();
  ~InstanceList() override;

  using SafeList::iterator;
  // Returns a cursor over all instances, or over those that are not marked deleted.
  virtual Iterator iterator(bool includeDeleted);
};

}  // namespace core

#endif  // ORVEX_CORE_INSTANCELIST_H_
