// The owner of a file descriptor, for the folders above this one.

#ifndef ORVEX_OS_POSIX_DESCRIPTOR_H_
#define ORVEX_OS_POSIX_DESCRIPTOR_H_

#include "platform/Posix/Descriptor.h"

namespace os {

using platform::Descriptor;

}  // namespace os

#endif  // ORVEX_OS_POSIX_DESCRIPTOR_H_
