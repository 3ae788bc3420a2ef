#include "midapi/KernelBackend.h"

namespace ma {

// docs/adapters.md says what one would have to offer.
FlashBackend* kernelBackend(utils::FlashSettings (* /*settings*/)()) {
  return nullptr;
}

}  // namespace ma
