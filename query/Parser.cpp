#include "query/Parser.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

#include "query/QueryFault.h"
#include "query/QueryWords.h"

namespace query {
namespace {

struct ComparatorSign {
  std::string_view sign;
  Comparator comparator;
};

constexpr ComparatorSign kComparators[] = {
    {"=", Comparator::Equal},          {"<>", Comparator::NotEqual},
    {"!=", Comparator::NotEqual},      {"<", Comparator::Less},
    {"<=", Comparator::LessOrEqual},   {">", Comparator::Greater},
    {">=", Comparator::GreaterOrEqual}};

constexpr std::string_view kArithmetic[] = {"+", "-", "*", "/", "||"};

// By recursive descent, of a depth that is bounded.
class Parser : private QueryWords {
 public:
  Parser(std::string_view text, Language language) : QueryWords(text), m_language(language) {}

  Statement parse() {
    Statement statement;
    if (m_language == Language::Fql) {
      statement.isAllSelected = true;
      statement.where = parseOr();
    } else {
      parseSelect(statement);
    }
    if (token().kind != Token::Kind::End) {
      refuseMissing(token());
      refuseToken(statement.where ? "AND, OR or the end" : "WHERE or the end");
    }
    return statement;
  }

 private:
  // ---- SELECT ... FROM ...

  void parseSelect(Statement& statement) {
    if (isAtWord("ASSOCIATORS") || isAtWord("REFERENCES")) {
      refuseUnsupported(token(),
                        "associations are followed by operations of their own, not by a query");
    }
    demandWord("SELECT");
    parseSelected(statement);
    demandWord("FROM");
    statement.from.offset = token().offset;
    statement.from.name = takeName("the name of a class");
    refuseMissing(token());
    if (isAtSymbol(",")) {
      refuseUnsupported(token(), "joins are not taken: a query has one class");
    }
    if (takeWord("AS") || isAtName()) {
      statement.alias = takeName("a name for the class");
      refuseMissing(token());
    }
    if (takeWord("WHERE")) {
      statement.where = parseOr();
    }
  }

  void parseSelected(Statement& statement) {
    if (takeSymbol("*")) {
      statement.isAllSelected = true;
      return;
    }
    do {
      statement.selected.push_back(parseSelectedChain());
      if (isAtWord("AS")) {
        refuseUnsupported(token(), "AS is not taken here: properties keep their names");
      }
    } while (takeSymbol(","));
  }

  Chain parseSelectedChain() {
    if (!isAtName()) {
      refuseToken("'*' or the name of a property");
    }
    const Token first = token();
    advance();
    const bool isFollowed = isAtName() || isAtSymbol("*") || token().kind == Token::Kind::Whole;
    if (isFollowed && !isAtWord("AS")) {
      // Else a property of that name.
      refuseMissing(first);
    }
    return parseChainBehind(first);
  }

  // ---- properties

  Chain parseChain() {
    const Token first = token();
    advance();
    return parseChainBehind(first);
  }

  // Reads the rest of a chain that begins with a name.
  Chain parseChainBehind(const Token& first) {
    if (isAtSymbol("(")) {
      refuseUnsupported(
          first, "functions are not taken: '" + toShown(first.written) + "' stands before '('");
    }
    Chain chain;
    chain.offset = first.offset;
    chain.steps.push_back(parseStepBehind(first));
    while (takeSymbol(".")) {
      if (isAtSymbol("*")) {
        advance();
        chain.isAll = true;
        return chain;
      }
      if (!isAtName()) {
        refuseToken("the name of a property");
      }
      if (chain.steps.size() == kMostSteps) {
        refuse(token().offset,
               "a property has " + std::to_string(kMostSteps) + " names between dots at the most");
      }
      const Token name = token();
      advance();
      chain.steps.push_back(parseStepBehind(name));
    }
    if (isAtSymbol("[")) {
      parseIndex(chain);
    }
    if (isAtSymbol("#")) {
      refuseUnsupported(token(), "names of values (#) are not taken; compare with the number");
    }
    return chain;
  }

  Step parseStepBehind(const Token& first) {
    Step step;
    if (takeSymbol("::")) {
      step.scope = ClassName{std::string(first.written), first.offset};
      step.offset = token().offset;
      step.name = takeName("the name of a property");
    } else {
      step.offset = first.offset;
      step.name = std::string(first.written);
    }
    return step;
  }

  void parseIndex(Chain& chain) {
    demandSymbol("[");
    if (takeSymbol("*")) {
      chain.indexing = Indexing::All;
    } else if (token().kind == Token::Kind::Whole) {
      chain.indexing = Indexing::Element;
      chain.index = token().whole;
      advance();
    } else {
      refuseToken("the number of an element, from 0, or '*'");
    }
    if (isAtSymbol("..") || isAtSymbol(",")) {
      refuseUnsupported(token(),
                        "ranges of elements are not taken; name one element, or write ANY");
    }
    demandSymbol("]");
    if (isAtSymbol(".")) {
      refuseUnsupported(token(), "arrays of instances are not looked into");
    }
  }

  // ---- conditions

  // Parts of one and the same kind stand side by side.
  template <class Parse>
  Condition parseParts(Condition::Kind kind, std::string_view word, Parse parsePart) {
    Condition first = parsePart();
    if (!isAtWord(word)) {
      return first;
    }
    Condition all;
    all.kind = kind;
    all.offset = first.offset;
    all.parts.push_back(std::move(first));
    while (takeWord(word)) {
      all.parts.push_back(parsePart());
    }
    return all;
  }

  Condition parseOr() {
    return parseParts(Condition::Kind::Or, "OR", [this] { return parseAnd(); });
  }

  Condition parseAnd() {
    return parseParts(Condition::Kind::And, "AND", [this] { return parseNot(); });
  }

  Condition parseNot() {
    if (!isAtWord("NOT")) {
      return parsePrimary();
    }
    const std::size_t offset = token().offset;
    enter();
    advance();
    Condition part = parseNot();
    leave();
    return negated(std::move(part), offset);
  }

  static Condition negated(Condition part, std::size_t offset) {
    Condition condition;
    condition.kind = Condition::Kind::Not;
    condition.offset = offset;
    condition.parts.push_back(std::move(part));
    return condition;
  }

  void enter() {
    if (++m_depth > kDeepestQuery) {
      refuse(token().offset, "( and NOT are nested deeper than " + std::to_string(kDeepestQuery));
    }
  }
  void leave() { --m_depth; }

  Condition parsePrimary() {
    if (isAtSymbol("(")) {
      enter();
      advance();
      Condition condition = parseOr();
      leave();
      if (!isAtSymbol(")")) {
        refuseMissing(token());
        refuseToken("AND, OR or ')'");
      }
      advance();
      return condition;
    }
    if (++m_conditions > kMostConditions) {
      refuse(token().offset,
             "a query has " + std::to_string(kMostConditions) + " conditions at the most");
    }
    return parsePredicate();
  }

  Condition parsePredicate() {
    Condition condition;
    condition.offset = token().offset;
    condition.operands.push_back(parseOperand());
    if (takeWord("IS")) {
      const bool isNegated = takeWord("NOT");
      demandWord("NULL");
      condition.kind = Condition::Kind::IsNull;
      const std::size_t offset = condition.offset;
      return isNegated ? negated(std::move(condition), offset) : std::move(condition);
    }
    if (isAtWord("LIKE") || isAtWord("NOT")) {
      return parseLike(std::move(condition));
    }
    if (takeWord("ISA")) {
      condition.kind = Condition::Kind::Isa;
      condition.className = parseClassOfIsa();
      return condition;
    }
    if (const ComparatorSign* sign = findComparator()) {
      if (sign->sign == "!=" && m_language != Language::Wql) {
        refuse(token().offset, "!= is of WQL; " + std::string(getName(m_language)) + " has <>");
      }
      condition.kind = Condition::Kind::Compare;
      condition.comparator = sign->comparator;
      advance();
      condition.operands.push_back(parseOperand());
      refuseArithmetic();
      return condition;
    }
    refuseArithmetic();
    if (token().kind == Token::Kind::End || isAtWord("AND") || isAtWord("OR") || isAtSymbol(")")) {
      condition.kind = Condition::Kind::Test;
      return condition;
    }
    refuseMissing(token());
    refuseToken(std::string("=, <>, <, <=, >, >=, ") + (m_language == Language::Wql ? "!=, " : "") +
                "IS, ISA or LIKE");
  }

  [[nodiscard]] const ComparatorSign* findComparator() const {
    const auto* found =
        std::find_if(std::begin(kComparators), std::end(kComparators),
                     [this](const ComparatorSign& one) { return isAtSymbol(one.sign); });
    return found != std::end(kComparators) ? found : nullptr;
  }

  void refuseArithmetic() const {
    for (const std::string_view sign : kArithmetic) {
      if (isAtSymbol(sign)) {
        refuseUnsupported(token(), "nothing is calculated: " + std::string(sign) + " is not taken");
      }
    }
  }

  Condition parseLike(Condition condition) {
    const std::size_t offset = condition.offset;
    const bool isNegated = takeWord("NOT");
    demandWord("LIKE");
    if (token().kind != Token::Kind::Text) {
      refuseToken("a pattern in quotes");
    }
    m_patternBytes += token().text.size();
    if (m_patternBytes > kMostPatternBytes) {
      refuse(token().offset, "the patterns of a query have " + std::to_string(kMostPatternBytes) +
                                 " bytes at the most");
    }
    condition.kind = Condition::Kind::Like;
    try {
      condition.pattern = std::make_shared<const Pattern>(m_language == Language::Wql
                                                              ? Pattern::fromWql(token().text)
                                                              : Pattern::fromCql(token().text));
    } catch (const PatternFault& fault) {
      refuse(token().offset, fault.what());
    }
    advance();
    return isNegated ? negated(std::move(condition), offset) : std::move(condition);
  }

  // WQL writes the class in quotes.
  ClassName parseClassOfIsa() {
    ClassName className{"", token().offset};
    if (token().kind == Token::Kind::Text) {
      className.name = token().text;
      advance();
    } else {
      className.name = takeName("the name of a class");
    }
    return className;
  }

  // ---- operands

  Operand parseOperand() {
    Operand operand;
    operand.offset = token().offset;
    if (takeWord("ANY")) {
      operand.quantifier = Quantifier::Any;
    } else if (takeWord("EVERY")) {
      operand.quantifier = Quantifier::Every;
    }
    if (operand.quantifier == Quantifier::None) {
      operand.literal = parseLiteral();
      if (operand.literal) {
        return operand;
      }
    }
    if (isAtWord("NULL")) {
      refuse(token().offset, "nothing is compared with NULL; write IS NULL or IS NOT NULL");
    }
    if (isAtWord("EXISTS")) {
      refuseMissing(token());
    }
    if (!isAtName()) {
      refuseToken(operand.quantifier == Quantifier::None ? "a property or a value"
                                                         : "a property that is an array");
    }
    operand.chain = parseChain();
    if (operand.chain.isAll) {
      refuse(operand.chain.offset, "'*' stands for properties in the list behind SELECT alone");
    }
    return operand;
  }

  // Returns nothing where none is.
  std::optional<Value> parseLiteral() {
    if (isAtSymbol("-") || isAtSymbol("+")) {
      const bool isNegative = isAtSymbol("-");
      advance();
      return parseNumber(isNegative);
    }
    std::optional<Value> value;
    switch (token().kind) {
      case Token::Kind::Text:
        value = Value{token().text};
        break;
      case Token::Kind::Whole:
      case Token::Kind::Real:
        return parseNumber(false);
      case Token::Kind::Identifier:
        if (isAtWord("TRUE") || isAtWord("FALSE")) {
          value = Value{isAtWord("TRUE")};
        }
        break;
      default:
        break;
    }
    if (value) {
      advance();
    }
    return value;
  }

  Value parseNumber(bool isNegative) {
    constexpr std::uint64_t kLowest = std::uint64_t{1} << 63U;
    Value value;
    if (token().kind == Token::Kind::Real) {
      value = Value{isNegative ? -token().real : token().real};
    } else if (token().kind != Token::Kind::Whole) {
      refuseToken("a number");
    } else if (!isNegative || token().whole == 0) {
      value = Value{token().whole};
    } else if (token().whole <= kLowest) {
      value = Value{static_cast<std::int64_t>(0 - token().whole)};
    } else {
      refuse(token().offset, "the number is beyond those of 64 bits");
    }
    advance();
    return value;
  }

  const Language m_language;
  unsigned m_depth = 0;
  unsigned m_conditions = 0;
  std::size_t m_patternBytes = 0;
};

}  // namespace

Statement parseStatement(std::string_view text, Language language) {
  return Parser(text, language).parse();
}

}  // namespace query
