// The arguments of a method call, from the NAME=VALUE texts of a command line.
//
// A method's signature gives each argument its type; without one every argument is a string.
//
//   type       VALUE
//   number     decimal, or hexadecimal behind 0x
//   boolean    true, false, 1, 0
//   string     the text; in double quotes, what stands between them ("" is the empty text)
//   reference  an object path
//   array      elements separated by commas, strings as above: 3,5   "a,b",c
//   any        nothing at all is NULL; a name left out is an argument that is missing
//
// An argument list belongs to one thread.

#ifndef ORVEX_CLI_ARGUMENTS_H_
#define ORVEX_CLI_ARGUMENTS_H_

#include <memory>
#include <string>
#include <vector>

#include "cim/MethodSignatures.h"
#include "core/OwningPropertyList.h"

namespace cli {

// Returns an argument that holds the value. Throws Fault (usage), which names the argument, for a
// text that is none of its type.
[[nodiscard]] std::unique_ptr<core::CimProperty> makeArgument(const std::string& name,
                                                              core::CimType type,
                                                              const std::string& text);

// How the callee compares the names of methods: its agents by their letters, a host in any case.
enum class MethodNames { Exact, InAnyCase };

class Arguments {
 public:
  // Throws Fault (usage) for a text without '=', a name that the method does not take or that comes
  // twice, and as makeArgument.
  Arguments(const std::string& method, const std::vector<std::string>& texts,
            MethodNames names = MethodNames::Exact);

  [[nodiscard]] core::CimPropertyList& in() { return m_in.list(); }
  // The output arguments of the signature, NULL until the method sets them.
  [[nodiscard]] core::CimPropertyList& out() { return m_out.list(); }

 private:
  void addInput(const std::string& method, const std::string& text);

  const core::MethodDeclaration* const m_signature;
  core::OwningPropertyList m_in;
  core::OwningPropertyList m_out;
};

}  // namespace cli

#endif  // ORVEX_CLI_ARGUMENTS_H_
