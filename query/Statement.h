// A query as a tree. The parser makes it, StatementBinding completes it; after that it is constant.
// Offsets are those of the text that it was read from.

#ifndef ORVEX_QUERY_STATEMENT_H_
#define ORVEX_QUERY_STATEMENT_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "query/Comparison.h"
#include "query/Language.h"
#include "query/Pattern.h"
#include "query/Value.h"

namespace query {

struct ClassName {
  std::string name;
  std::size_t offset = 0;
};

// SourceInstance, or CIM_ConcreteJob::JobState: the property as that class has it.
struct Step {
  std::optional<ClassName> scope;
  std::string name;
  std::size_t offset = 0;
};

enum class Indexing { None, All, Element };

// A.B.C[0]. Without a step it is the instance itself.
struct Chain {
  std::vector<Step> steps;
  Indexing indexing = Indexing::None;
  std::uint64_t index = 0;  // of Element
  std::size_t offset = 0;
  bool isAll = false;  // A.*, in a list of properties

  // Returns it as a query writes it.
  [[nodiscard]] std::string written() const;
};

enum class Quantifier { None, Any, Every };

struct Operand {
  Quantifier quantifier = Quantifier::None;
  std::optional<Value> literal;  // else the chain counts
  Chain chain;
  std::size_t offset = 0;
};

struct Condition {
  enum class Kind {
    And,      // parts
    Or,       // parts
    Not,      // one part
    Compare,  // two operands
    Like,     // an operand and the pattern
    IsNull,   // an operand
    Isa,      // an operand and a class
    Test,     // an operand: a truth value
  };

  Kind kind = Kind::Test;
  std::vector<Condition> parts;
  std::vector<Operand> operands;
  Comparator comparator = Comparator::Equal;
  ClassName className;
  std::shared_ptr<const Pattern> pattern;
  std::size_t offset = 0;
};

struct Statement {
  std::vector<Chain> selected;
  bool isAllSelected = false;
  ClassName from;
  std::string alias;  // by which the query calls the class; empty: by its name
  std::optional<Condition> where;
};

}  // namespace query

#endif  // ORVEX_QUERY_STATEMENT_H_
