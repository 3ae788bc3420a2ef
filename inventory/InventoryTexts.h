// What there is to say of the inventory's classes. Constant data.

#ifndef ORVEX_INVENTORY_INVENTORYTEXTS_H_
#define ORVEX_INVENTORY_INVENTORYTEXTS_H_

#include <span>

#include "core/ClassText.h"

namespace inventory {

[[nodiscard]] std::span<const core::ClassText> getInventoryTexts();

}  // namespace inventory

#endif  // ORVEX_INVENTORY_INVENTORYTEXTS_H_
