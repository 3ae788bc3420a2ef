// The query languages that are taken. Plain functions, any thread.
//
//   WQL       the dialect of SQL that management clients have used for long: LIKE with % and _
//   DMTF:CQL  the CIM Query Language (DSP0202), its basic part: LIKE with regular expressions
//   DMTF:FQL  the Filter Query Language (DSP0212): a condition alone, for enumerations

#ifndef ORVEX_QUERY_LANGUAGE_H_
#define ORVEX_QUERY_LANGUAGE_H_

#include <optional>
#include <string_view>

namespace query {

enum class Language { Wql, Cql, Fql };

// Returns the language in which a whole query may be written, SELECT and all; names are compared
// without regard to case. Returns nothing for any other.
[[nodiscard]] std::optional<Language> findQueryLanguage(std::string_view name);
// The same for what narrows an enumeration down: any of the languages.
[[nodiscard]] std::optional<Language> findFilterLanguage(std::string_view name);

// Returns the name by which clients know it.
[[nodiscard]] std::string_view getName(Language language);

}  // namespace query

#endif  // ORVEX_QUERY_LANGUAGE_H_
