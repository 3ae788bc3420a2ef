// What an enumeration of a provider yields, asks for and logs.

#ifndef ORVEX_TESTS_AGENT_ENUMERATION_H_
#define ORVEX_TESTS_AGENT_ENUMERATION_H_

#include <string>
#include <utility>
#include <vector>

#include "core/CimClass.h"
#include "tests/support/LogCapture.h"

namespace test {

// A property's name and its value as text: "{1, 2}" for an array, "false" for a truth value.
using NamedValue = std::pair<std::string, std::string>;

// Returns the properties in force that are not null.
[[nodiscard]] std::vector<NamedValue> filledProperties(core::CimInstance& instance);
// Expects that these properties have these values, in any order, and that the others are null.
void expectFilled(core::CimInstance& instance, std::vector<NamedValue> expected);
// Gives each property some value.
void fillEveryProperty(core::CimInstance& instance);
// Returns the names of the properties that are marked as keys, in order.
[[nodiscard]] std::vector<std::string> keyNames(core::CimInstance& instance);

// Returns all instances that the provider yields.
[[nodiscard]] std::vector<core::CimInstance*> instancesOf(core::CimClass& provider);

// The two instances that an association connects: their object paths, or themselves.
using Ends = std::pair<std::string, std::string>;
using Targets = std::pair<core::CimInstance*, core::CimInstance*>;

// Enumerates. Expects of each association that its path names both ends and nothing else, and that
// the broker finds each end by that.
[[nodiscard]] std::vector<Ends> enumerateEnds(core::CimClass& provider, const std::string& first,
                                              const std::string& second);
// The same for ends whose paths may be alike, without the expectations.
[[nodiscard]] std::vector<Targets> enumerateTargets(core::CimClass& provider,
                                                    const std::string& first,
                                                    const std::string& second);

// What the records of a provider's enumerations have in common.
struct EnumerationNames {
  std::string source;
  // The timed block; empty: named as the function that logs.
  std::string block = {};
};

// Expects that one enumeration was logged with just these messages, and a timed block that begins
// behind the first of them.
void expectEnumeration(const LogCapture& log, const EnumerationNames& names,
                       const std::vector<std::string>& messages);

}  // namespace test

#endif  // ORVEX_TESTS_AGENT_ENUMERATION_H_
