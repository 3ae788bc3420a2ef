// How the instances of one class are written for one request: the properties that are chosen, each
// with its opening tag made once.
//
// Any number of threads may use one; callers hold the broker's request while they pass instances.

#ifndef ORVEX_CIMXML_INSTANCEFORMAT_H_
#define ORVEX_CIMXML_INSTANCEFORMAT_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "cimxml/Buffer.h"
#include "cimxml/NameSet.h"
#include "cimxml/Properties.h"
#include "core/CimInstance.h"
#include "core/ClassDeclaration.h"

namespace cimxml {

class InstanceFormat {
 public:
  struct Options {
    // Leaves out what the class inherits.
    bool isLocalOnly = false;
    bool hasClassOrigin = false;
    // Null: all of them. Unknown names choose nothing.
    const NameSet* propertyList = nullptr;
    // The properties of this class alone; null: all. For an enumeration that is not deep.
    const core::ClassDeclaration* ancestor = nullptr;
  };

  InstanceFormat(const core::ClassDeclaration& declaration, const Options& options,
                 std::string_view nameSpace);

  // <INSTANCE CLASSNAME="..."><PROPERTY ...>... The instance is one of the class; a property that
  // the class does not declare is left out.
  void append(Buffer& out, core::CimInstance& instance) const;
  void append(Buffer& out, const Properties& properties) const;

 private:
  struct Field {
    core::CimType type;
    bool isChosen;
    // Where they stand in m_tags: <PROPERTY NAME="Caption" TYPE="string">, the name in it, and
    // behind it </PROPERTY>.
    std::size_t tagStart;
    std::size_t tagLength;
    std::size_t nameStart;
    std::size_t nameLength;
    std::size_t endTagLength;
  };

  [[nodiscard]] bool isOf(const Field& field, const core::CimProperty& property) const;
  // Returns null for a property that the class does not declare.
  [[nodiscard]] const Field* findField(const core::CimProperty& property,
                                       std::size_t position) const;

  std::string m_nameSpace;
  std::string m_start;          // <INSTANCE CLASSNAME="...">
  std::string m_tags;           // of all fields, one behind the other
  std::vector<Field> m_fields;  // by the position of the property among those in force
};

}  // namespace cimxml

#endif  // ORVEX_CIMXML_INSTANCEFORMAT_H_
