#include "query/Comparison.h"

#include <cmath>
#include <compare>
#include <optional>

#include "query/ObjectPathComparison.h"

namespace query {
namespace {

Truth fromOrder(std::strong_ordering order, Comparator comparator) {
  switch (comparator) {
    case Comparator::Equal:
      return toTruth(order == 0);
    case Comparator::NotEqual:
      return toTruth(order != 0);
    case Comparator::Less:
      return toTruth(order < 0);
    case Comparator::LessOrEqual:
      return toTruth(order <= 0);
    case Comparator::Greater:
      return toTruth(order > 0);
    case Comparator::GreaterOrEqual:
      return toTruth(order >= 0);
  }
  return Truth::Unknown;
}

// Of what has no order.
Truth fromSameness(bool isSame, Comparator comparator) {
  return isOfOrder(comparator) ? Truth::Unknown
                               : toTruth(isSame == (comparator == Comparator::Equal));
}

constexpr std::strong_ordering reversed(std::strong_ordering order) {
  return 0 <=> order;
}

// ---- numbers

// A whole number, and what it lacks of the number itself: from 0 up to 1.
struct Number {
  bool isNegative = false;  // of the whole
  std::uint64_t magnitude = 0;
  double fraction = 0;
};

// How a number compares with all that 64 bits hold.
enum class Range { Below, Within, Above };

std::strong_ordering compareWhole(const Number& left, const Number& right) {
  if (left.isNegative != right.isNegative) {
    return left.isNegative ? std::strong_ordering::less : std::strong_ordering::greater;
  }
  const std::strong_ordering order = left.magnitude <=> right.magnitude;
  return left.isNegative ? reversed(order) : order;
}

std::strong_ordering compareNumbers(const Number& left, const Number& right) {
  const std::strong_ordering order = compareWhole(left, right);
  if (order != 0) {
    return order;
  }
  if (left.fraction < right.fraction) {
    return std::strong_ordering::less;
  }
  return left.fraction > right.fraction ? std::strong_ordering::greater
                                        : std::strong_ordering::equal;
}

Number toNumber(std::uint64_t value) {
  return {false, value, 0};
}

Number toNumber(std::int64_t value) {
  const auto bits = static_cast<std::uint64_t>(value);
  return value < 0 ? Number{true, 0 - bits, 0} : Number{false, bits, 0};
}

constexpr double kTwoTo64 = 18446744073709551616.0;

Range rangeOf(double value) {
  if (value >= kTwoTo64) {
    return Range::Above;
  }
  return value <= -kTwoTo64 ? Range::Below : Range::Within;
}

// For what is within the range.
Number toNumber(double value) {
  const double whole = std::floor(value);
  const bool isNegative = whole < 0;
  return {isNegative, static_cast<std::uint64_t>(isNegative ? -whole : whole), value - whole};
}

template <class Whole>
std::strong_ordering compareWithReal(Whole whole, double real) {
  switch (rangeOf(real)) {
    case Range::Below:
      return std::strong_ordering::greater;
    case Range::Above:
      return std::strong_ordering::less;
    case Range::Within:
      break;
  }
  return compareNumbers(toNumber(whole), toNumber(real));
}

std::strong_ordering compareReals(double left, double right) {
  if (left < right) {
    return std::strong_ordering::less;
  }
  return left > right ? std::strong_ordering::greater : std::strong_ordering::equal;
}

// ---- date-times

Truth compareDatetimes(const utils::Datetime& left, Comparator comparator,
                       const utils::Datetime& right) {
  return left.isTimestamp == right.isTimestamp ? fromOrder(left.value <=> right.value, comparator)
                                               : Truth::Unknown;
}

Truth compareDatetimes(const utils::Datetime& left, Comparator comparator,
                       const std::string& right) {
  const std::optional<utils::Datetime> other = utils::Datetime::fromCimText(right);
  return other ? compareDatetimes(left, comparator, *other) : Truth::Unknown;
}

// Returns the comparator that says the same of the two the other way round.
Comparator mirrored(Comparator comparator) {
  switch (comparator) {
    case Comparator::Less:
      return Comparator::Greater;
    case Comparator::LessOrEqual:
      return Comparator::GreaterOrEqual;
    case Comparator::Greater:
      return Comparator::Less;
    case Comparator::GreaterOrEqual:
      return Comparator::LessOrEqual;
    default:
      return comparator;
  }
}

// ---- any values

struct Compare {
  Comparator comparator;

  Truth operator()(bool left, bool right) const { return fromSameness(left == right, comparator); }
  Truth operator()(std::uint64_t left, std::uint64_t right) const {
    return fromOrder(left <=> right, comparator);
  }
  Truth operator()(std::int64_t left, std::int64_t right) const {
    return fromOrder(left <=> right, comparator);
  }
  Truth operator()(std::int64_t left, std::uint64_t right) const {
    return fromOrder(compareNumbers(toNumber(left), toNumber(right)), comparator);
  }
  Truth operator()(std::uint64_t left, std::int64_t right) const {
    return fromOrder(compareNumbers(toNumber(left), toNumber(right)), comparator);
  }
  Truth operator()(std::int64_t left, double right) const {
    return fromOrder(compareWithReal(left, right), comparator);
  }
  Truth operator()(std::uint64_t left, double right) const {
    return fromOrder(compareWithReal(left, right), comparator);
  }
  Truth operator()(double left, std::int64_t right) const {
    return fromOrder(reversed(compareWithReal(right, left)), comparator);
  }
  Truth operator()(double left, std::uint64_t right) const {
    return fromOrder(reversed(compareWithReal(right, left)), comparator);
  }
  Truth operator()(double left, double right) const {
    return fromOrder(compareReals(left, right), comparator);
  }
  // The bytes of UTF-8 are in the order of its characters.
  Truth operator()(const std::string& left, const std::string& right) const {
    return fromOrder(left.compare(right) <=> 0, comparator);
  }
  Truth operator()(const utils::Datetime& left, const utils::Datetime& right) const {
    return compareDatetimes(left, comparator, right);
  }
  Truth operator()(const utils::Datetime& left, const std::string& right) const {
    return compareDatetimes(left, comparator, right);
  }
  Truth operator()(const std::string& left, const utils::Datetime& right) const {
    return compareDatetimes(right, mirrored(comparator), left);
  }
  Truth operator()(const ObjectPath& left, const ObjectPath& right) const {
    return fromSameness(isSameObject(left.text, right.text), comparator);
  }
  Truth operator()(const ObjectPath& left, const std::string& right) const {
    return fromSameness(isSameObject(left.text, right), comparator);
  }
  Truth operator()(const std::string& left, const ObjectPath& right) const {
    return fromSameness(isSameObject(left, right.text), comparator);
  }
  template <class Left, class Right>
  Truth operator()(const Left&, const Right&) const {
    return Truth::Unknown;
  }
};

}  // namespace

Truth compare(const Value& left, Comparator comparator, const Value& right) {
  return std::visit(Compare{comparator}, left.held, right.held);
}

}  // namespace query
