// What a host tells of a class, as a description. Not on Windows.

#ifndef ORVEX_CLIENT_HOSTCLASSES_H_
#define ORVEX_CLIENT_HOSTCLASSES_H_

#include "cimxml/Response.h"
#include "client/ClassDescription.h"

namespace client {

// Takes what its qualifiers say; of one that comes twice, the first. Names of values without a
// ValueMap are those of the numbers from 0 (DSP0004).
[[nodiscard]] ClassDescription describeClass(const cimxml::ClassValue& declaration);

}  // namespace client

#endif  // ORVEX_CLIENT_HOSTCLASSES_H_
