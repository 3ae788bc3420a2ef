// A query over instances: which class, which condition, which properties. Constant and cheap to
// copy; any thread may use one. It needs neither its text nor the schema any more once it is made.

#ifndef ORVEX_QUERY_QUERY_H_
#define ORVEX_QUERY_QUERY_H_

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/CimSchema.h"
#include "query/InstanceView.h"
#include "query/Language.h"
#include "query/QueryFault.h"

namespace query {

struct Statement;

class Query {
 public:
  // Reads "SELECT ... FROM ... WHERE ..." (see query/Parser.h), of DMTF:FQL a condition alone.
  // Throws QueryFault, which names the place in the text. `className` is the class that such a
  // condition is about, one of the schema; empty: any.
  [[nodiscard]] static Query parse(std::string_view text, Language language,
                                   const core::CimSchema& schema,
                                   const std::string& className = "");

  // Returns the class as the schema spells it; empty: any.
  [[nodiscard]] const std::string& fromClass() const;
  // Returns the names of the properties in the order of the text, each once; nothing: all.
  [[nodiscard]] const std::optional<std::vector<std::string>>& selectedProperties() const {
    return m_selected;
  }

  // Returns whether the instance is of the class, or of one below it, and the condition is true:
  // one that is unknown, since a property is NULL, is not.
  [[nodiscard]] bool matches(const InstanceView& instance) const;

 private:
  explicit Query(std::shared_ptr<const Statement> statement);

  std::shared_ptr<const Statement> m_statement;
  std::optional<std::vector<std::string>> m_selected;
};

// Returns the class that a query names, as it is written there, whatever else the text says; empty
// where none is found. For who has to know it before there is a schema.
[[nodiscard]] std::string findFromClass(std::string_view text);

}  // namespace query

#endif  // ORVEX_QUERY_QUERY_H_
