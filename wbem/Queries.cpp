#include "wbem/Queries.h"

#include "cimxml/Characters.h"

namespace wbem {
namespace {

constexpr QueryParameters kFilter{"FilterQueryLanguage", "FilterQuery",
                                  Status::QueryFeatureNotSupported};

Status statusOf(const query::QueryFault& fault, Status whenUnsupported) {
  switch (fault.kind()) {
    case query::QueryFault::Kind::Invalid:
      break;
    case query::QueryFault::Kind::Unsupported:
      return whenUnsupported;
    case query::QueryFault::Kind::UnknownClass:
      return Status::InvalidClass;
  }
  return Status::InvalidQuery;
}

[[noreturn]] void refuseLanguage(const std::string& name, const std::string& offered) {
  constexpr std::size_t kMostBytesTold = 100;
  throw StatusFault(Status::QueryLanguageNotSupported,
                    "query language '" + cimxml::shorten(name, kMostBytesTold) +
                        "' is not offered; there are " + offered);
}

query::Query parse(const OperationCall& call, const std::string& text, query::Language language,
                   Status whenUnsupported, const std::string& className = "") {
  try {
    return query::Query::parse(text, language, call.nameSpace.schema(), className);
  } catch (const query::QueryFault& fault) {
    throw StatusFault(statusOf(fault, whenUnsupported), fault.what());
  }
}

// Returns the class that is enumerated; empty where none is, or one that there is not.
std::string findClassName(const OperationCall& call) {
  const cimxml::Parameter* parameter = call.request.find("ClassName");
  const auto* name =
      parameter != nullptr ? std::get_if<cimxml::ObjectName>(&parameter->value) : nullptr;
  return name != nullptr && call.nameSpace.schema().find(name->className) != nullptr
             ? name->className
             : "";
}

}  // namespace

query::Query demandQuery(const OperationCall& call, const QueryParameters& parameters) {
  const std::string name = call.parameters.demandString(parameters.language);
  const std::string text = call.parameters.demandString(parameters.query);
  const std::optional<query::Language> language = query::findQueryLanguage(name);
  if (!language) {
    refuseLanguage(name, "WQL and DMTF:CQL");
  }
  return parse(call, text, *language, parameters.whenUnsupported);
}

std::optional<query::Query> readFilter(const OperationCall& call) {
  const std::string name = call.parameters.getString(kFilter.language).value_or("");
  const std::string text = call.parameters.getString(kFilter.query).value_or("");
  if (name.empty() && text.empty()) {
    return std::nullopt;
  }
  const std::optional<query::Language> language = query::findFilterLanguage(name);
  if (!language) {
    refuseLanguage(name, "DMTF:FQL, WQL and DMTF:CQL");
  }
  query::Query filter = parse(call, text, *language, kFilter.whenUnsupported, findClassName(call));
  if (filter.selectedProperties()) {
    throw StatusFault(Status::InvalidQuery,
                      "a filter narrows down instances, not properties: write SELECT *, and name "
                      "properties in PropertyList");
  }
  return filter;
}

}  // namespace wbem
