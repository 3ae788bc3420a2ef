// Writes the results of an operation, one after the other, in the form that the operation has.
// Callers hold the broker's request while they add instances.

#ifndef ORVEX_WBEM_INSTANCERESULTS_H_
#define ORVEX_WBEM_INSTANCERESULTS_H_

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "cimxml/InstanceFormat.h"
#include "cimxml/Properties.h"
#include "query/Query.h"
#include "wbem/OperationCall.h"

namespace wbem {

enum class Form {
  Instance,          // INSTANCE
  NamedInstance,     // VALUE.NAMEDINSTANCE
  InstanceName,      // INSTANCENAME
  ObjectWithPath,    // VALUE.OBJECTWITHPATH
  ObjectPath,        // OBJECTPATH
  InstanceWithPath,  // VALUE.INSTANCEWITHPATH
  InstancePath,      // INSTANCEPATH
};

// Which properties are written.
struct PropertyChoice {
  Namespace::FormatOptions options;
  std::optional<cimxml::NameSet> propertyList;  // none: all
};

// Reads LocalOnly, IncludeClassOrigin and PropertyList, as far as the operation has them. LocalOnly
// is deprecated, and the standard's default would take from an instance what its class inherits,
// which is nearly all: one that is left out counts as false. Throws StatusFault.
[[nodiscard]] PropertyChoice readPropertyChoice(const OperationParameters& parameters);

class InstanceResults {
 public:
  // Writes to `out`. The call and `out` are the caller's and outlive this.
  InstanceResults(const OperationCall& call, Form form, PropertyChoice choice, std::string& out);
  InstanceResults(const InstanceResults&) = delete;
  InstanceResults& operator=(const InstanceResults&) = delete;
  ~InstanceResults();

  [[nodiscard]] Form form() const { return m_form; }
  // Chooses the properties of the class alone.
  void setAncestor(const core::ClassDeclaration& ancestor) {
    m_choice.options.ancestor = &ancestor;
  }
  // From now on an instance is passed over that the filter does not match.
  void setFilter(query::Query filter) { m_filter.emplace(std::move(filter)); }
  // From now on an object is written once, however often it is added. For forms with paths.
  void passOverRepeated() { m_passesOverRepeated = true; }

  // Adds an instance as one of that namespace.
  void add(const Namespace& nameSpace, const ServedClass& served, core::CimInstance& instance);
  // Adds a class of the request's namespace, in a form of objects.
  void addClass(const core::ClassDeclaration& declaration);

  // Returns where each result ends in `out`.
  [[nodiscard]] std::vector<std::size_t>& ends() { return m_ends; }

 private:
  void append(const Namespace& nameSpace, const ServedClass& served, core::CimInstance& instance);
  [[nodiscard]] const cimxml::InstanceFormat& formatOf(const Namespace& nameSpace,
                                                       const ServedClass& served);

  const OperationCall& m_call;
  const Form m_form;
  PropertyChoice m_choice;
  std::optional<query::Query> m_filter;
  std::string& m_out;
  std::vector<std::size_t> m_ends;
  bool m_passesOverRepeated = false;
  std::set<std::string, std::less<>> m_written;  // paths
  cimxml::Properties m_properties;               // of the instance that is being written
  // Of each class that has come: associators alternate between classes.
  std::map<const ServedClass*, Namespace::Format> m_formats;
};

}  // namespace wbem

#endif  // ORVEX_WBEM_INSTANCERESULTS_H_
