#include "client/Queries.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace client {

void refuseQuery(const std::string& reason, Fault::Kind kind) {
  throw Fault("the query is refused: " + reason, kind);
}

query::Query parseQuery(const std::string& text, const std::string& languageName,
                        const core::CimSchema& schema) {
  const std::optional<query::Language> language = query::findQueryLanguage(languageName);
  if (!language) {
    refuseQuery("query language '" + languageName + "' is not offered; there are WQL and DMTF:CQL",
                Fault::Kind::Usage);
  }
  try {
    return query::Query::parse(text, *language, schema);
  } catch (const query::QueryFault& fault) {
    const bool isOfSchema = fault.kind() == query::QueryFault::Kind::UnknownClass;
    refuseQuery(fault.what(), isOfSchema ? Fault::Kind::Refused : Fault::Kind::Usage);
  }
}

void keepSelected(InstanceSnapshot& instance, const query::Query& query) {
  const std::optional<std::vector<std::string>>& selected = query.selectedProperties();
  if (selected) {
    std::erase_if(instance.properties, [&selected](const PropertySnapshot& property) {
      return std::find(selected->begin(), selected->end(), property.name) == selected->end();
    });
  }
}

}  // namespace client
