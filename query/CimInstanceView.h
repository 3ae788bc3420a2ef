// An instance of the object model, looked at by a query. The caller holds the broker's request
// while it is used (see core/CimBroker.h).

#ifndef ORVEX_QUERY_CIMINSTANCEVIEW_H_
#define ORVEX_QUERY_CIMINSTANCEVIEW_H_

#include <string>

#include "core/CimInstance.h"
#include "core/CimProperty.h"
#include "core/CimSchema.h"
#include "query/InstanceView.h"

namespace query {

class CimInstanceView final : public InstanceView {
 public:
  // Both outlive the view. The schema tells what the instance's class derives from.
  CimInstanceView(core::CimInstance& instance, const core::CimSchema& schema);
  ~CimInstanceView() override;

  [[nodiscard]] bool isA(std::string_view className) const override;
  [[nodiscard]] Value getValue(std::string_view propertyName) const override;

 private:
  core::CimInstance& m_instance;
  const core::CimSchema& m_schema;
  const std::string m_className;
};

// Returns the value of a property; NULL where it has none.
[[nodiscard]] Value toValue(const core::CimProperty& property);

}  // namespace query

#endif  // ORVEX_QUERY_CIMINSTANCEVIEW_H_
