#include "query/Language.h"

#include "Utils/Ascii.h"

namespace query {

std::optional<Language> findQueryLanguage(std::string_view name) {
  for (const Language language : {Language::Wql, Language::Cql}) {
    if (utils::isSameIgnoringCase(name, getName(language))) {
      return language;
    }
  }
  return std::nullopt;
}

std::string_view getName(Language language) {
  switch (language) {
    case Language::Wql:
      return "WQL";
    case Language::Cql:
      return "DMTF:CQL";
    case Language::Fql:
      return "DMTF:FQL";
  }
  return {};
}

}  // namespace query
