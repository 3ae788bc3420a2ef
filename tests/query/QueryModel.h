// A schema for queries, and instances of it that hold any values: things with a property of each
// type, jobs, and indications, which hold instances.

#ifndef ORVEX_TESTS_QUERY_QUERYMODEL_H_
#define ORVEX_TESTS_QUERY_QUERYMODEL_H_

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/CimSchema.h"
#include "query/InstanceView.h"
#include "query/QueryFault.h"

namespace test {

inline core::ClassDeclaration declare(const std::string& name, const std::string& superclass,
                                      std::vector<core::PropertyDeclaration> properties) {
  core::ClassDeclaration declaration;
  declaration.name = name;
  declaration.superclass = superclass;
  declaration.properties = std::move(properties);
  return declaration;
}

inline const core::CimSchema& querySchema() {
  static const auto& schema = *[] {
    auto made = std::make_unique<core::CimSchema>();
    const std::vector<core::PropertyDeclaration> thing = {
        {"Name", core::kCimString, true, "", "Test_Thing"},
        {"Count", core::kCimUint64, false, "", "Test_Thing"},
        {"Delta", core::kCimSint8, false, "", "Test_Thing"},
        {"IsGood", core::kCimBoolean, false, "", "Test_Thing"},
        {"Since", core::kCimDatetime, false, "", "Test_Thing"},
        {"Peer", core::kCimReference, false, "Test_Thing", "Test_Thing"},
        {"States", core::kCimUint16Array, false, "", "Test_Thing"},
        {"Roles", core::kCimStringArray, false, "", "Test_Thing"}};
    made->add(declare("Test_Thing", "", thing));
    std::vector<core::PropertyDeclaration> job = thing;
    job.push_back({"PercentComplete", core::kCimUint16, false, "", "Test_Job"});
    made->add(declare("Test_Job", "Test_Thing", job));
    made->add(declare("Test_Indication", "", {}));
    made->add(declare("Test_Modification", "Test_Indication",
                      {{"SourceInstance", core::kCimString, false, "", "Test_Modification"},
                       {"PreviousInstance", core::kCimString, false, "", "Test_Modification"}}));
    return made.release();
  }();
  return schema;
}

class FakeView final : public query::InstanceView {
 public:
  using Values = std::map<std::string, query::Value, core::NameLess>;

  explicit FakeView(std::string className, Values values = {})
      : m_className(std::move(className)), m_values(std::move(values)) {}

  [[nodiscard]] bool isA(std::string_view className) const override {
    return querySchema().isA(m_className, className);
  }
  [[nodiscard]] query::Value getValue(std::string_view propertyName) const override {
    const auto found = m_values.find(std::string(propertyName));
    return found != m_values.end() ? found->second : query::Value();
  }

 private:
  const std::string m_className;
  const Values m_values;
};

inline query::Value text(const std::string& value) {
  return {value};
}
inline query::Value number(std::uint64_t value) {
  return {value};
}
inline query::Value negative(std::int64_t value) {
  return {value};
}
inline query::Value real(double value) {
  return {value};
}
inline query::Value truth(bool value) {
  return {value};
}
inline query::Value datetime(const std::string& value) {
  return {utils::Datetime::fromCimText(value).value()};
}
inline query::Value path(const std::string& value) {
  return {query::ObjectPath{value}};
}
inline query::Value array(std::vector<query::Value> elements) {
  return {std::move(elements)};
}
inline query::Value embedded(const std::string& className, FakeView::Values values) {
  return {query::EmbeddedInstance(std::make_shared<FakeView>(className, std::move(values)))};
}

// Returns what `refused` throws as a query's fault; "" where it throws none.
template <class Refused>
std::string faultOf(Refused refused) {
  try {
    refused();
  } catch (const query::QueryFault& fault) {
    return fault.what();
  }
  return "";
}

}  // namespace test

#endif  // ORVEX_TESTS_QUERY_QUERYMODEL_H_
