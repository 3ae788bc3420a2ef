#include "core/InstanceList.h"

namespace core {

InstanceList::InstanceList() : SafeList(true) {}

InstanceList::~InstanceList() = default;

InstanceList::Iterator InstanceList::iterator(bool includeDeleted) {
  if (includeDeleted) {
    return iterator();
  }
  return Iterator(std::make_unique<DeletedInstancesSkippingIterator>(this));
}

}  // namespace core
