#include "query/Language.h"

#include "Utils/Ascii.h"

namespace query {

std::optional<Language> findFilterLanguage(std::string_view name) {
  for (const Language language : {Language::Wql, Language::Cql, Language::Fql}) {
    if (utils::isSameIgnoringCase(name, getName(language))) {
      return language;
    }
  }
  return std::nullopt;
}

std::optional<Language> findQueryLanguage(std::string_view name) {
  const std::optional<Language> language = findFilterLanguage(name);
  return language != Language::Fql ? language : std::nullopt;
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
