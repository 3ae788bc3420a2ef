// The names of objects in CIM-XML (DSP0201: the elements that name, and VALUE.REFERENCE), written
// to a buffer. cimxml/NameElements.h reads them. Callers hold the broker's request while they pass
// instances.

#ifndef ORVEX_CIMXML_NAMEWRITER_H_
#define ORVEX_CIMXML_NAMEWRITER_H_

#include <string_view>

#include "cimxml/Buffer.h"
#include "cimxml/ObjectName.h"
#include "cimxml/Properties.h"
#include "core/CimInstance.h"
#include "core/CimPropertyRef.h"

namespace cimxml {

// <LOCALNAMESPACEPATH><NAMESPACE NAME="root"/>...
void appendLocalNamespacePath(Buffer& out, std::string_view nameSpace);
// <NAMESPACEPATH><HOST>...</HOST><LOCALNAMESPACEPATH>...
void appendNamespacePath(Buffer& out, std::string_view host, std::string_view nameSpace);
// <CLASSNAME NAME="..."/>
void appendClassName(Buffer& out, std::string_view className);
// <INSTANCENAME CLASSNAME="..."><KEYBINDING ...>; keys that are references get the namespace.
void appendInstanceName(Buffer& out, core::CimInstance& instance, std::string_view nameSpace);
// The same of a name. References in it keep the namespace and the host that they have; with an
// empty `nameSpace`, one that has none is written as its name alone.
void appendInstanceName(Buffer& out, const ObjectName& name, std::string_view nameSpace);
void appendInstanceName(Buffer& out, std::string_view className, const Properties& properties,
                        std::string_view nameSpace);
// <INSTANCEPATH>: namespace path and instance name.
void appendInstancePath(Buffer& out, core::CimInstance& instance, std::string_view host,
                        std::string_view nameSpace);
void appendInstancePath(Buffer& out, std::string_view className, const Properties& properties,
                        std::string_view host, std::string_view nameSpace);
// The same for a class.
void appendClassPath(Buffer& out, std::string_view className, std::string_view host,
                     std::string_view nameSpace);
// <VALUE.REFERENCE> of a reference that is not NULL: the name of its target or, without a target,
// its text as a name. Returns false, and appends nothing, for a text that names no instance.
bool appendReference(Buffer& out, const core::CimPropertyRef& reference,
                     std::string_view nameSpace);
// The same of a name, as far as it is known: with neither its own nor this namespace it is written
// as the name alone.
void appendReference(Buffer& out, const ObjectName& name, std::string_view nameSpace);

}  // namespace cimxml

#endif  // ORVEX_CIMXML_NAMEWRITER_H_
