// What a flash that is a chain of option ROM images holds, for a listing of its adapter.

#ifndef ORVEX_MIDAPI_FLASHLISTING_H_
#define ORVEX_MIDAPI_FLASHLISTING_H_

#include "midapi/AdapterListing.h"
#include "midapi/OptionRom.h"

namespace ma {

// Fills in the flash's size, its images and what is wrong with it; `listing` has the vendor and the
// device. Throws nothing but std::bad_alloc.
void describeFlash(RomBytes flash, AdapterListing& listing);

}  // namespace ma

#endif  // ORVEX_MIDAPI_FLASHLISTING_H_
