// What a writer of instances is given of one.

#ifndef ORVEX_CIMXML_PROPERTIES_H_
#define ORVEX_CIMXML_PROPERTIES_H_

#include <vector>

#include "core/CimProperty.h"

namespace cimxml {

// The properties in force of an instance, as core::CimPropertyList::copyTo gives them: who writes
// an instance and its name asks for them once. Callers hold the broker's request.
using Properties = std::vector<core::CimProperty*>;

}  // namespace cimxml

#endif  // ORVEX_CIMXML_PROPERTIES_H_
