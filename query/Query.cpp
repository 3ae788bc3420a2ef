#include "query/Query.h"

#include <algorithm>
#include <utility>

#include "query/Evaluation.h"
#include "query/Parser.h"
#include "query/QueryWords.h"
#include "query/StatementBinding.h"

namespace query {
namespace {

std::optional<std::vector<std::string>> namesOf(const Statement& statement) {
  if (statement.isAllSelected) {
    return std::nullopt;
  }
  std::vector<std::string> names;
  for (const Chain& chain : statement.selected) {
    const std::string& name = chain.steps.front().name;
    if (std::find(names.begin(), names.end(), name) == names.end()) {
      names.push_back(name);
    }
  }
  return names;
}

}  // namespace

Query::Query(std::shared_ptr<const Statement> statement)
    : m_statement(std::move(statement)), m_selected(namesOf(*m_statement)) {}

Query Query::parse(std::string_view text, Language language, const core::CimSchema& schema,
                   const std::string& className) {
  auto statement = std::make_shared<Statement>(parseStatement(text, language));
  if (language == Language::Fql) {
    statement->from.name = className;
  }
  bindStatement(*statement, text, schema);
  return Query(std::move(statement));
}

const std::string& Query::fromClass() const {
  return m_statement->from.name;
}

bool Query::matches(const InstanceView& instance) const {
  const Statement& statement = *m_statement;
  return (statement.from.name.empty() || instance.isA(statement.from.name)) &&
         (!statement.where || evaluate(*statement.where, instance) == Truth::True);
}

std::string findFromClass(std::string_view text) {
  try {
    QueryWords words(text);
    while (words.token().kind != Token::Kind::End) {
      if (words.takeWord("FROM")) {
        return words.isAtName() ? words.takeName("") : "";
      }
      words.advance();
    }
  } catch (const QueryFault&) {
    // what is wrong is told to who asks for the answer
  }
  return "";
}

}  // namespace query
