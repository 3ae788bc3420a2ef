// Properties as people read them. As programs do, see cli/JsonOutput.h:
//
//   type       text            JSON
//   number     42              42
//   boolean    true            true
//   string     "a \"b\""       "a \"b\""
//   date-time  CIM form        "CIM form"
//   reference  path            "path"
//   array      {1, 2}          [1, 2]
//   NULL       NULL            null

#ifndef ORVEX_CLI_OUTPUT_H_
#define ORVEX_CLI_OUTPUT_H_

#include <ostream>
#include <string>

#include "client/ClassDescription.h"
#include "client/Snapshot.h"

namespace cli {

[[nodiscard]] std::string toText(const client::PropertySnapshot& property);

// Prints "  Name = value" lines whose signs line up; where the class is given, "  Name = 4
// (Running)" for numbers that have names there.
void printProperties(std::ostream& out, const client::Properties& properties,
                     client::NullProperties nulls,
                     const client::ClassDescription* described = nullptr);

}  // namespace cli

#endif  // ORVEX_CLI_OUTPUT_H_
