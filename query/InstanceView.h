// An instance as a query looks at it: one that is served, one that is embedded in another, or one
// that tells of a change and holds both.

#ifndef ORVEX_QUERY_INSTANCEVIEW_H_
#define ORVEX_QUERY_INSTANCEVIEW_H_

#include <string_view>

#include "query/Value.h"

namespace query {

class InstanceView {
 public:
  InstanceView() = default;
  InstanceView(const InstanceView&) = delete;
  InstanceView& operator=(const InstanceView&) = delete;
  virtual ~InstanceView() = default;

  // Returns whether it is of the class or of one below it; names are compared without regard to
  // case.
  [[nodiscard]] virtual bool isA(std::string_view className) const = 0;

  // Returns the value of a property, NULL for one that the instance lacks. Names are compared
  // without regard to case; a query asks by the spelling of the class where it knows it.
  [[nodiscard]] virtual Value getValue(std::string_view propertyName) const = 0;
};

}  // namespace query

#endif  // ORVEX_QUERY_INSTANCEVIEW_H_
