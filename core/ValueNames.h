// The names that values have by a table of value names (core/ClassText.h). Any thread may call.

#ifndef ORVEX_CORE_VALUENAMES_H_
#define ORVEX_CORE_VALUENAMES_H_

#include <cstdint>
#include <span>
#include <string_view>

#include "Utils/Export.h"
#include "core/ClassText.h"

namespace core {

// Returns the name of the number: that of its own row, else that of a range which it is in, else
// that of the row for all others. Empty when there is none. A row whose value is no number and no
// range is nobody's.
[[nodiscard]] ORVEX_CORE_API std::string_view findValueName(std::span<const ValueName> values,
                                                            std::int64_t number);

// Returns the name of the text, by a row of exactly that value. Empty when there is none.
[[nodiscard]] ORVEX_CORE_API std::string_view findValueName(std::span<const ValueName> values,
                                                            std::string_view text);

}  // namespace core

#endif  // ORVEX_CORE_VALUENAMES_H_
