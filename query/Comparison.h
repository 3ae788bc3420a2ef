// How two values compare, and the logic of three truth values (DSP0202): what is compared with
// NULL, or with a value of another sort, is unknown. Plain functions, any thread.

#ifndef ORVEX_QUERY_COMPARISON_H_
#define ORVEX_QUERY_COMPARISON_H_

#include "query/Value.h"

namespace query {

enum class Truth { False, Unknown, True };

[[nodiscard]] constexpr Truth toTruth(bool isTrue) {
  return isTrue ? Truth::True : Truth::False;
}

[[nodiscard]] constexpr Truth negate(Truth truth) {
  switch (truth) {
    case Truth::False:
      return Truth::True;
    case Truth::True:
      return Truth::False;
    case Truth::Unknown:
      break;
  }
  return Truth::Unknown;
}

enum class Comparator { Equal, NotEqual, Less, LessOrEqual, Greater, GreaterOrEqual };

[[nodiscard]] constexpr bool isOfOrder(Comparator comparator) {
  return comparator != Comparator::Equal && comparator != Comparator::NotEqual;
}

// Numbers compare as numbers, whatever their types, without loss. Texts compare character by
// character. Truth values and references are equal or not; references as objects (see
// query/ObjectPathComparison.h), with texts too. Date-times compare as moments, intervals as
// lengths, either with a text that is one; a moment and an interval do not compare.
[[nodiscard]] Truth compare(const Value& left, Comparator comparator, const Value& right);

}  // namespace query

#endif  // ORVEX_QUERY_COMPARISON_H_
