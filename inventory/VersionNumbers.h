// The numbers in the text of a version.

#ifndef ORVEX_INVENTORY_VERSIONNUMBERS_H_
#define ORVEX_INVENTORY_VERSIONNUMBERS_H_

#include <string_view>

#include "cim/CIM_SoftwareIdentity.h"

namespace inventory {

// Fills MajorVersion, MinorVersion, RevisionNumber and BuildNumber (or LargeBuildNumber) from a
// text of one to four numbers with dots between them. Leaves all NULL for any other text, and where
// a number does not fit its property: half a version would be another one.
void setVersionNumbers(CIM_SoftwareIdentity& software, std::string_view text);

}  // namespace inventory

#endif  // ORVEX_INVENTORY_VERSIONNUMBERS_H_
