// What the names in a query mean in a schema: gives them the spelling of the declarations, and
// tells what sort of values they have.

#ifndef ORVEX_QUERY_PROPERTYBINDING_H_
#define ORVEX_QUERY_PROPERTYBINDING_H_

#include <string>
#include <string_view>
#include <vector>

#include "core/CimSchema.h"
#include "query/Statement.h"

namespace query {

// What a value may be compared with. Unknown is that of a property of an embedded instance, whose
// class shows when there is one.
enum class Sort { Unknown, Number, Text, Boolean, Datetime, Reference, Instance };

struct PropertyType {
  Sort sort = Sort::Unknown;
  bool isArray = false;
  std::string name;  // of the CIM type; empty: unknown
};

class PropertyBinding {
 public:
  // `from` is the class of the instances, empty where they are of any; `alias` another name by
  // which the query calls it. Text and schema outlive this. Throws QueryFault (UnknownClass).
  PropertyBinding(std::string_view text, const core::CimSchema& schema, ClassName& from,
                  std::string alias);

  // Drops the name of the class in front of a property. Throws QueryFault for a property that no
  // instance can have, and for an element of what is no array. The result is that of an element
  // where one is named.
  [[nodiscard]] PropertyType bind(Chain& chain) const;
  // The same for a property of the list behind SELECT; drops the class of A.* alone.
  void bindSelected(Chain& chain) const;

  // Gives the class its spelling. Throws QueryFault (UnknownClass).
  const core::ClassDeclaration& bindClass(ClassName& className) const;

 private:
  [[noreturn]] void refuse(std::size_t offset, const std::string& reason) const;
  [[nodiscard]] bool isOwnName(const Step& step) const;
  [[nodiscard]] PropertyType bindOwn(Step& step) const;
  [[nodiscard]] PropertyType bindScoped(Step& step, bool isOwn) const;
  [[nodiscard]] PropertyType bindEmbedded(Step& step) const;
  [[noreturn]] void refuseProperty(const Step& step,
                                   const core::ClassDeclaration& declaration) const;
  [[nodiscard]] std::string findBelow(const Step& step) const;

  const std::string_view m_text;
  const core::CimSchema& m_schema;
  const core::ClassDeclaration* m_from = nullptr;  // null: any
  const std::string m_alias;
};

}  // namespace query

#endif  // ORVEX_QUERY_PROPERTYBINDING_H_
