// Which of two versions is older, as devlink, ethtool and firmware packages write them.
//
// A version is read as a row of numbers and words; what else stands in it parts them, so "1.2-b3"
// is 1, 2, b, 3. A "v" in front of a number at the beginning is left out. The rows are compared
// part by part, and the first difference decides:
//   - numbers count by their value, however long: 1.10.2 is newer than 1.9, and 2026-11-21 than
//     2026-9-30. Hexadecimal ones with "0x" in front and up to 16 digits are numbers, too.
//   - parts that are missing count as 0: 1.2 and 1.2.0 are the same.
//   - a word comes behind 0 and before all other numbers: 1.2 is older than 1.2a and 1.2-abc, and
//     these are older than 1.2.1. Two words are compared by their letters, whose case does not
//     matter.
//   - the words alpha, beta, dev, pre, preview, rc, snapshot and test announce what follows them,
//     and so come before 0: 1.2-rc1 is older than 1.2.
// So every two versions compare, and in the same way whatever else they are compared with; versions
// that are the same need not be the same text. Bytes that are not ASCII are letters.

#ifndef ORVEX_MIDAPI_VERSIONTEXT_H_
#define ORVEX_MIDAPI_VERSIONTEXT_H_

#include <compare>
#include <string_view>

namespace ma {

// Returns less where `one` is older than `other`. Linear in the texts; nothing throws.
[[nodiscard]] std::weak_ordering compareVersions(std::string_view one,
                                                 std::string_view other) noexcept;

}  // namespace ma

#endif  // ORVEX_MIDAPI_VERSIONTEXT_H_
