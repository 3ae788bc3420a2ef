// Properties and instances as people and programs read them.
//
//   type       text            JSON
//   number     42              42
//   boolean    true            true
//   string     "a \"b\""       "a \"b\""
//   date-time  CIM form        "CIM form"
//   reference  path            "path"
//   array      {1, 2}          [1, 2]
//   NULL       NULL            null
//
// The caller holds the broker's request while it passes instances.

#ifndef ORVEX_CLI_OUTPUT_H_
#define ORVEX_CLI_OUTPUT_H_

#include <nlohmann/json.hpp>
#include <ostream>
#include <string>

#include "core/CimInstance.h"
#include "core/CimProperty.h"

namespace cli {

// Keeps the order in which fields are added.
using Json = nlohmann::ordered_json;

[[nodiscard]] std::string toText(const core::CimProperty& property);
[[nodiscard]] Json toJson(const core::CimProperty& property);

enum class NullProperties { Left, Shown };

// Returns the properties as an object, in their order.
[[nodiscard]] Json propertiesToJson(core::CimPropertyList& properties, NullProperties nulls);
// Returns {"path": "...", "properties": {...}}.
[[nodiscard]] Json instanceToJson(core::CimInstance& instance, NullProperties nulls);

// Prints "  Name = value" lines whose signs line up.
void printProperties(std::ostream& out, core::CimPropertyList& properties, NullProperties nulls);

// Prints a document in UTF-8: its texts are made so (see Os/Texts.h), and bytes that are none after
// all appear as replacement characters.
void printJson(std::ostream& out, Json document);

}  // namespace cli

#endif  // ORVEX_CLI_OUTPUT_H_
