// What is told of a virtual adapter from its description alone.

#ifndef ORVEX_MIDAPI_VIRTUAL_ADAPTEROUTLINE_H_
#define ORVEX_MIDAPI_VIRTUAL_ADAPTEROUTLINE_H_

#include "midapi/AdapterListing.h"
#include "midapi/Virtual/AdapterDescription.h"

namespace ma {

// Returns the adapter but for what its flash holds. Its ports are of an Ethernet, and their
// addresses are those that they were made with.
[[nodiscard]] AdapterListing outlineOf(const AdapterDescription& description);

}  // namespace ma

#endif  // ORVEX_MIDAPI_VIRTUAL_ADAPTEROUTLINE_H_
