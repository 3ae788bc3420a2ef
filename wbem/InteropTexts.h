// What there is to say of the server's own classes (wbem/InteropClasses.h). Constant data.

#ifndef ORVEX_WBEM_INTEROPTEXTS_H_
#define ORVEX_WBEM_INTEROPTEXTS_H_

#include <span>

#include "core/ClassText.h"

namespace wbem {

[[nodiscard]] std::span<const core::ClassText> getInteropTexts();

}  // namespace wbem

#endif  // ORVEX_WBEM_INTEROPTEXTS_H_
