#include "query/Evaluation.h"

#include <cstddef>
#include <utility>

namespace query {
namespace {

// Returns whether any part is true, or none is false: `decisive` settles it.
template <class Parts, class Evaluate>
Truth combine(const Parts& parts, Truth decisive, Evaluate evaluatePart) {
  Truth all = negate(decisive);
  for (const auto& part : parts) {
    const Truth truth = evaluatePart(part);
    if (truth == decisive) {
      return truth;
    }
    if (truth == Truth::Unknown) {
      all = truth;
    }
  }
  return all;
}

Value elementOf(Value value, std::uint64_t index) {
  auto* elements = std::get_if<Array>(&value.held);
  return elements != nullptr && index < elements->size()
             ? std::move((*elements)[static_cast<std::size_t>(index)])
             : Value();
}

Value readStep(const Step& step, const InstanceView& instance) {
  return step.scope && !instance.isA(step.scope->name) ? Value() : instance.getValue(step.name);
}

// For a chain of one step at the least.
Value readChain(const Chain& chain, const InstanceView& instance) {
  Value value = readStep(chain.steps.front(), instance);
  for (std::size_t i = 1; i < chain.steps.size(); ++i) {
    const auto* embedded = std::get_if<EmbeddedInstance>(&value.held);
    if (embedded == nullptr || *embedded == nullptr) {
      return {};
    }
    const EmbeddedInstance owner = *embedded;
    value = readStep(chain.steps[i], *owner);
  }
  return chain.indexing == Indexing::Element ? elementOf(std::move(value), chain.index) : value;
}

// Calls test(value) for the operand's value, or for those that its quantifier is about.
template <class Test>
Truth testValues(const Operand& operand, const InstanceView& instance, Test test) {
  if (operand.literal) {
    return test(*operand.literal);
  }
  const Value value = readChain(operand.chain, instance);
  if (operand.quantifier == Quantifier::None) {
    return test(value);
  }
  const auto* elements = std::get_if<Array>(&value.held);
  if (elements == nullptr) {
    return Truth::Unknown;
  }
  return combine(*elements, operand.quantifier == Quantifier::Any ? Truth::True : Truth::False,
                 test);
}

Truth evaluateComparison(const Condition& condition, const InstanceView& instance) {
  return testValues(condition.operands[0], instance, [&](const Value& left) {
    return testValues(condition.operands[1], instance, [&](const Value& right) {
      return compare(left, condition.comparator, right);
    });
  });
}

Truth evaluateLike(const Condition& condition, const InstanceView& instance) {
  return testValues(condition.operands.front(), instance, [&condition](const Value& value) {
    const auto* text = std::get_if<std::string>(&value.held);
    return text != nullptr ? toTruth(condition.pattern->matches(*text)) : Truth::Unknown;
  });
}

Truth evaluateNullTest(const Operand& operand, const InstanceView& instance) {
  if (operand.chain.steps.empty()) {
    return Truth::False;
  }
  return testValues(operand, instance, [](const Value& value) { return toTruth(value.isNull()); });
}

Truth evaluateIsa(const Condition& condition, const InstanceView& instance) {
  const Chain& chain = condition.operands.front().chain;
  if (chain.steps.empty()) {
    return toTruth(instance.isA(condition.className.name));
  }
  const Value value = readChain(chain, instance);
  const auto* embedded = std::get_if<EmbeddedInstance>(&value.held);
  return embedded != nullptr && *embedded != nullptr
             ? toTruth((*embedded)->isA(condition.className.name))
             : Truth::Unknown;
}

Truth evaluateTest(const Operand& operand, const InstanceView& instance) {
  return testValues(operand, instance, [](const Value& value) {
    const auto* truth = std::get_if<bool>(&value.held);
    return truth != nullptr ? toTruth(*truth) : Truth::Unknown;
  });
}

}  // namespace

Truth evaluate(const Condition& condition, const InstanceView& instance) {
  const auto evaluatePart = [&instance](const Condition& part) { return evaluate(part, instance); };
  switch (condition.kind) {
    case Condition::Kind::And:
      return combine(condition.parts, Truth::False, evaluatePart);
    case Condition::Kind::Or:
      return combine(condition.parts, Truth::True, evaluatePart);
    case Condition::Kind::Not:
      return negate(evaluatePart(condition.parts.front()));
    case Condition::Kind::Compare:
      return evaluateComparison(condition, instance);
    case Condition::Kind::Like:
      return evaluateLike(condition, instance);
    case Condition::Kind::IsNull:
      return evaluateNullTest(condition.operands.front(), instance);
    case Condition::Kind::Isa:
      return evaluateIsa(condition, instance);
    case Condition::Kind::Test:
      return evaluateTest(condition.operands.front(), instance);
  }
  return Truth::Unknown;
}

}  // namespace query
