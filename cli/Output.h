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
// The caller holds the broker's request while it passes instances and properties of them.

#ifndef ORVEX_CLI_OUTPUT_H_
#define ORVEX_CLI_OUTPUT_H_

#include <ostream>
#include <string>

#include "cli/Snapshot.h"
#include "core/CimInstance.h"
#include "core/CimProperty.h"

namespace cli {

[[nodiscard]] std::string toText(const core::CimProperty& property);
[[nodiscard]] std::string toText(const PropertySnapshot& property);
[[nodiscard]] Json toJson(const core::CimProperty& property);

[[nodiscard]] PropertySnapshot snapshotOf(const core::CimProperty& property);
[[nodiscard]] Properties snapshotOf(core::CimPropertyList& properties);
[[nodiscard]] InstanceSnapshot snapshotOf(core::CimInstance& instance);

enum class NullProperties { Left, Shown };

// Returns the properties as an object, in their order.
[[nodiscard]] Json propertiesToJson(const Properties& properties, NullProperties nulls);
// Returns {"path": "...", "properties": {...}}.
[[nodiscard]] Json instanceToJson(const InstanceSnapshot& instance, NullProperties nulls);

// Prints "  Name = value" lines whose signs line up.
void printProperties(std::ostream& out, const Properties& properties, NullProperties nulls);

// Prints a document in UTF-8: its texts are made so (see Os/Texts.h), and bytes that are none after
// all appear as replacement characters.
void printJson(std::ostream& out, Json document);

}  // namespace cli

#endif  // ORVEX_CLI_OUTPUT_H_
