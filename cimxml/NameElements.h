// The elements of a request that name an object. Throw RequestFault as cimxml/Elements.h has it.

#ifndef ORVEX_CIMXML_NAMEELEMENTS_H_
#define ORVEX_CIMXML_NAMEELEMENTS_H_

#include <pugixml.hpp>
#include <string>

#include "cimxml/ObjectName.h"

namespace cimxml {

// LOCALNAMESPACEPATH: returns "root/interop".
[[nodiscard]] std::string readLocalNamespacePath(const pugi::xml_node& element);
// CLASSNAME
[[nodiscard]] ObjectName readClassName(const pugi::xml_node& element);
// INSTANCENAME
[[nodiscard]] ObjectName readInstanceName(const pugi::xml_node& element);
// One of these, LOCALCLASSPATH, CLASSPATH, LOCALINSTANCEPATH, INSTANCEPATH.
[[nodiscard]] ObjectName readName(const pugi::xml_node& element);
// VALUE.REFERENCE
[[nodiscard]] ObjectName readReference(const pugi::xml_node& element);

}  // namespace cimxml

#endif  // ORVEX_CIMXML_NAMEELEMENTS_H_
