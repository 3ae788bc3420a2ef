// Reads the text of a query into a tree. Knows no class; see query/StatementBinding.h for that.
//
//   SELECT * | PROPERTY, ...  FROM CLASS [[AS] ALIAS]  [WHERE CONDITION]
//
//   CONDITION  CONDITION OR CONDITION, CONDITION AND CONDITION, NOT CONDITION, (CONDITION),
//              OPERAND = <> < <= > >= OPERAND (WQL: != too), OPERAND IS [NOT] NULL,
//              OPERAND [NOT] LIKE 'PATTERN', PROPERTY ISA CLASS, a truth value
//   OPERAND    a literal, PROPERTY, PROPERTY[N], ANY PROPERTY, EVERY PROPERTY (of an array; [*] may
//              stand behind it)
//   PROPERTY   NAME, CLASS.NAME, ALIAS.NAME, CLASS::NAME; .NAME behind one that holds an instance
//
// Of DMTF:FQL a text is a CONDITION. Keywords count in any case. Texts, their nesting and their
// numbers of conditions are bounded, so that a hostile one costs next to nothing.

#ifndef ORVEX_QUERY_PARSER_H_
#define ORVEX_QUERY_PARSER_H_

#include <cstddef>
#include <string_view>

#include "query/Language.h"
#include "query/QueryWords.h"
#include "query/Statement.h"

namespace query {

inline constexpr unsigned kDeepestQuery = 64;           // of ( and NOT
inline constexpr std::size_t kMostSteps = 8;            // of a property, A.B.C
inline constexpr unsigned kMostConditions = 256;        // comparisons and the like
inline constexpr std::size_t kMostPatternBytes = 1024;  // of all LIKE together

// Throws QueryFault: Invalid, and Unsupported for what the language has beyond this.
[[nodiscard]] Statement parseStatement(std::string_view text, Language language);

}  // namespace query

#endif  // ORVEX_QUERY_PARSER_H_
