#include "query/StatementBinding.h"

#include <algorithm>
#include <string>

#include "Utils/Datetime.h"
#include "query/ObjectPathComparison.h"
#include "query/PropertyBinding.h"
#include "query/QueryFault.h"

namespace query {
namespace {

PropertyType typeOfLiteral(const Value& literal) {
  if (std::holds_alternative<bool>(literal.held)) {
    return {Sort::Boolean, false, "boolean"};
  }
  if (std::holds_alternative<std::string>(literal.held)) {
    return {Sort::Text, false, "string"};
  }
  return {Sort::Number, false, "number"};
}

struct SortWords {
  Sort sort;
  const char* comparedWith;
};

constexpr SortWords kSortWords[] = {
    {Sort::Number, "numbers"},
    {Sort::Text, "texts in quotes"},
    {Sort::Boolean, "TRUE or FALSE"},
    {Sort::Datetime, "date-times in quotes"},
    {Sort::Reference, "object paths in quotes"},
};

std::string describe(const Operand& operand, const PropertyType& type) {
  if (operand.literal) {
    return "a literal of type " + type.name;
  }
  return operand.chain.written() + " of type " + type.name;
}

class Binder {
 public:
  Binder(Statement& statement, std::string_view text, const core::CimSchema& schema)
      : m_text(text), m_properties(text, schema, statement.from, statement.alias) {}

  void bindSelected(Statement& statement) const {
    for (Chain& chain : statement.selected) {
      m_properties.bindSelected(chain);
      statement.isAllSelected = statement.isAllSelected || chain.isAll;
    }
  }

  // Of a depth that the parser bounds.
  void bind(Condition& condition) const {
    switch (condition.kind) {
      case Condition::Kind::And:
      case Condition::Kind::Or:
      case Condition::Kind::Not:
        std::for_each(condition.parts.begin(), condition.parts.end(),
                      [this](Condition& part) { bind(part); });
        break;
      case Condition::Kind::Compare:
        bindComparison(condition);
        break;
      case Condition::Kind::Like:
        bindLike(condition.operands.front());
        break;
      case Condition::Kind::IsNull:
        bindNullTest(condition.operands.front());
        break;
      case Condition::Kind::Isa:
        bindIsa(condition);
        break;
      case Condition::Kind::Test:
        bindTest(condition.operands.front());
        break;
    }
  }

 private:
  [[noreturn]] void refuse(std::size_t offset, const std::string& reason) const {
    throw QueryFault(QueryFault::Kind::Invalid, m_text, offset, reason);
  }

  // Returns the type of a value, of an element where the operand is quantified.
  PropertyType bindValue(Operand& operand) const {
    if (operand.literal) {
      return typeOfLiteral(*operand.literal);
    }
    PropertyType type = m_properties.bind(operand.chain);
    if (type.sort == Sort::Instance) {
      refuse(operand.offset, "the instance itself is no value; name one of its properties");
    }
    const bool isQuantified = operand.quantifier != Quantifier::None;
    const std::string written = operand.chain.written();
    if (isQuantified && operand.chain.indexing == Indexing::Element) {
      refuse(operand.offset, written + " is one element; leave out ANY or EVERY");
    }
    if (isQuantified && !type.isArray && type.sort != Sort::Unknown) {
      refuse(operand.offset, written + " is no array; leave out ANY or EVERY");
    }
    if (!isQuantified && (type.isArray || operand.chain.indexing == Indexing::All)) {
      refuse(operand.offset, operand.chain.steps.back().name +
                                 " is an array: write ANY or EVERY before it, or the number of an "
                                 "element behind it, from [0]");
    }
    type.isArray = false;
    return type;
  }

  void bindComparison(Condition& condition) const {
    Operand& left = condition.operands[0];
    Operand& right = condition.operands[1];
    const PropertyType leftType = bindValue(left);
    const PropertyType rightType = bindValue(right);
    demandComparable(left, leftType, right, rightType);
    if (isOfOrder(condition.comparator)) {
      demandOrdered(left, leftType);
      demandOrdered(right, rightType);
    }
    demandMeaning(left, rightType);
    demandMeaning(right, leftType);
  }

  void demandOrdered(const Operand& operand, const PropertyType& type) const {
    if (type.sort == Sort::Boolean || type.sort == Sort::Reference) {
      refuse(operand.offset, describe(operand, type) + " has no order; it is compared by = and <>");
    }
  }

  void demandComparable(const Operand& left, const PropertyType& leftType, const Operand& right,
                        const PropertyType& rightType) const {
    const auto isTextFor = [](const PropertyType& one, const PropertyType& other) {
      return one.sort == Sort::Text &&
             (other.sort == Sort::Datetime || other.sort == Sort::Reference);
    };
    if (leftType.sort == Sort::Unknown || rightType.sort == Sort::Unknown ||
        leftType.sort == rightType.sort || isTextFor(leftType, rightType) ||
        isTextFor(rightType, leftType)) {
      return;
    }
    const bool isLeftLiteral = left.literal.has_value();
    const Operand& fixed = isLeftLiteral ? right : left;
    const PropertyType& fixedType = isLeftLiteral ? rightType : leftType;
    const Operand& other = isLeftLiteral ? left : right;
    const PropertyType& otherType = isLeftLiteral ? leftType : rightType;
    const auto* words =
        std::find_if(std::begin(kSortWords), std::end(kSortWords),
                     [&fixedType](const SortWords& one) { return one.sort == fixedType.sort; });
    refuse(other.offset, describe(fixed, fixedType) + " is compared with " + words->comparedWith +
                             ", and here is " + describe(other, otherType));
  }

  // A text that is compared with a date-time or a reference has to be one.
  void demandMeaning(const Operand& operand, const PropertyType& otherType) const {
    const auto* text = operand.literal ? std::get_if<std::string>(&operand.literal->held) : nullptr;
    if (text == nullptr) {
      return;
    }
    if (otherType.sort == Sort::Datetime && !utils::Datetime::fromCimText(*text)) {
      refuse(operand.offset,
             "a date-time is yyyymmddhhmmss.mmmmmmsutc or, of an interval, "
             "ddddddddhhmmss.mmmmmm:000, and '" +
                 toShown(*text) + "' is neither");
    }
    if (otherType.sort == Sort::Reference && !isObjectPath(*text)) {
      refuse(operand.offset,
             "an object path is CLASS.KEY=\"VALUE\",..., and '" + toShown(*text) + "' is none");
    }
  }

  void bindLike(Operand& operand) const {
    const PropertyType type = bindValue(operand);
    if (type.sort != Sort::Text && type.sort != Sort::Unknown) {
      refuse(operand.offset, "LIKE is for texts, and here is " + describe(operand, type));
    }
  }

  void bindNullTest(Operand& operand) const {
    if (operand.literal) {
      refuse(operand.offset, "a property is expected before IS, and here is a literal");
    }
    if (operand.quantifier != Quantifier::None) {
      static_cast<void>(bindValue(operand));
      return;
    }
    if (operand.chain.indexing == Indexing::All) {
      refuse(operand.offset, "leave out [*]: " + operand.chain.written() + " is NULL as a whole");
    }
    static_cast<void>(m_properties.bind(operand.chain));
  }

  void bindIsa(Condition& condition) const {
    Operand& operand = condition.operands.front();
    if (operand.literal || operand.quantifier != Quantifier::None) {
      refuse(operand.offset, "the class or an embedded instance is expected before ISA");
    }
    const PropertyType type = m_properties.bind(operand.chain);
    const bool mayBeInstance =
        !type.isArray &&
        (type.sort == Sort::Instance || type.sort == Sort::Text || type.sort == Sort::Unknown);
    if (!mayBeInstance) {
      refuse(operand.offset, "ISA is for instances, and " + describe(operand, type) + " is none");
    }
    m_properties.bindClass(condition.className);
  }

  void bindTest(Operand& operand) const {
    const PropertyType type = bindValue(operand);
    if (type.sort != Sort::Boolean && type.sort != Sort::Unknown) {
      refuse(operand.offset,
             describe(operand, type) + " is no truth value by itself; compare it with something");
    }
  }

  const std::string_view m_text;
  const PropertyBinding m_properties;
};

}  // namespace

void bindStatement(Statement& statement, std::string_view text, const core::CimSchema& schema) {
  const Binder binder(statement, text, schema);
  binder.bindSelected(statement);
  if (statement.where) {
    binder.bind(*statement.where);
  }
}

}  // namespace query
