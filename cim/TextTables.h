// The tables of cim::addSchemaTexts. Constant data.

#ifndef ORVEX_CIM_TEXTTABLES_H_
#define ORVEX_CIM_TEXTTABLES_H_

#include <span>

#include "core/ClassText.h"

namespace cim {

[[nodiscard]] std::span<const core::ClassText> getElementTexts();
[[nodiscard]] std::span<const core::ClassText> getJobTexts();
[[nodiscard]] std::span<const core::ClassText> getServiceTexts();
[[nodiscard]] std::span<const core::ClassText> getProfileTexts();
[[nodiscard]] std::span<const core::ClassText> getPortTexts();
[[nodiscard]] std::span<const core::ClassText> getSoftwareTexts();
[[nodiscard]] std::span<const core::ClassText> getSystemTexts();

}  // namespace cim

#endif  // ORVEX_CIM_TEXTTABLES_H_
