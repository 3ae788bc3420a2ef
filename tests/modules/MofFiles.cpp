// Prints a file of schema/: the declarations of the classes of all agents in MOF (DSP0004). For
// scripts/generate-mof, and for the test that the files are current.
//
// usage: mof_files cim | orvex

#include <exception>
#include <iostream>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>

#include "core/CimBroker.h"
#include "tests/modules/ModuleHost.h"

namespace {

constexpr std::string_view kCimPrefix = "CIM_";

constexpr std::string_view kCimIntroduction =
    R"(// The standard classes, as far as the agents declare them.
//
// Printed by the running agents; scripts/generate-mof writes the file anew.

Qualifier Association : boolean = false, Scope(association), Flavor(DisableOverride);
Qualifier In : boolean = true, Scope(parameter), Flavor(DisableOverride);
Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride);
Qualifier Out : boolean = false, Scope(parameter), Flavor(DisableOverride);
Qualifier Override : string = null, Scope(property, reference, method), Flavor(Restricted);
)";

constexpr std::string_view kOrvexIntroduction =
    R"(// The classes that the agents serve.
//
// Printed by the running agents; scripts/generate-mof writes the file anew.

#pragma include ("cim.mof")
)";

bool isStandard(const core::ClassDeclaration& declaration) {
  return declaration.name.starts_with(kCimPrefix);
}

// Returns "type name", with what makes it a reference or an array.
template <class Element>
std::string toText(const Element& element) {
  if (element.type == core::kCimReference) {
    return element.referenceClass + " REF " + element.name;
  }
  return std::string(core::getTypeName(element.type)) + " " + element.name +
         (core::isArray(element.type) ? "[]" : "");
}

std::string_view toQualifier(core::ParameterDirection direction) {
  return direction == core::ParameterDirection::In ? "[In] " : "[In(false), Out] ";
}

class MofFile {
 public:
  MofFile(const core::CimSchema& schema, bool isStandardFile)
      : m_schema(schema), m_isStandardFile(isStandardFile) {}

  void print() {
    std::cout << (m_isStandardFile ? kCimIntroduction : kOrvexIntroduction);
    std::set<std::string, core::NameLess> names;
    for (const core::ClassDeclaration* declaration : m_schema.getDescendants("")) {
      names.insert(declaration->name);
    }
    for (const std::string& name : names) {
      printClass(name);
    }
  }

 private:
  // Prints a class behind those that it names.
  void printClass(const std::string& name) {
    if (name.empty() || !m_printed.insert(name).second) {
      return;
    }
    const core::ClassDeclaration* declaration = m_schema.find(name);
    if (declaration == nullptr) {
      throw std::runtime_error("class " + name + " is not declared");
    }
    printClass(declaration->superclass);
    for (const core::PropertyDeclaration& property : declaration->properties) {
      printClass(property.referenceClass);
    }
    for (const core::MethodDeclaration& method : declaration->methods) {
      for (const core::ParameterDeclaration& parameter : method.parameters) {
        printClass(parameter.referenceClass);
      }
    }
    if (isStandard(*declaration) == m_isStandardFile) {
      print(*declaration);
    }
  }

  void print(const core::ClassDeclaration& declaration) const {
    const core::ClassDeclaration* superclass = m_schema.find(declaration.superclass);
    std::cout << "\n"
              << (declaration.isAssociation ? "[Association]\n" : "") << "class "
              << declaration.name << (superclass != nullptr ? " : " + superclass->name : "")
              << " {\n";
    for (const core::PropertyDeclaration& property : declaration.properties) {
      if (property.origin == declaration.name) {
        print(property,
              superclass != nullptr && superclass->findProperty(property.name) != nullptr);
      }
    }
    for (const core::MethodDeclaration& method : declaration.methods) {
      if (method.origin == declaration.name) {
        print(method, superclass != nullptr && superclass->findMethod(method.name) != nullptr);
      }
    }
    std::cout << "};\n";
  }

  static void print(const core::PropertyDeclaration& property, bool isOverride) {
    std::string qualifiers = property.isKey ? "Key" : "";
    if (isOverride) {
      qualifiers += (qualifiers.empty() ? "" : ", ") + overrideOf(property.name);
    }
    std::cout << "  " << (qualifiers.empty() ? "" : "[" + qualifiers + "] ") << toText(property)
              << ";\n";
  }

  static void print(const core::MethodDeclaration& method, bool isOverride) {
    std::cout << "  " << (isOverride ? "[" + overrideOf(method.name) + "] " : "")
              << core::getTypeName(method.returnType) << " " << method.name << "(";
    const char* separator = "\n";
    for (const core::ParameterDeclaration& parameter : method.parameters) {
      std::cout << separator << "    " << toQualifier(parameter.direction) << toText(parameter);
      separator = ",\n";
    }
    std::cout << ");\n";
  }

  static std::string overrideOf(const std::string& name) { return "Override(\"" + name + "\")"; }

  const core::CimSchema& m_schema;
  const bool m_isStandardFile;
  std::set<std::string, core::NameLess> m_printed;
};

}  // namespace

int main(int count, char** arguments) {
  try {
    const std::string_view file = count == 2 ? arguments[1] : "";
    if (file != "cim" && file != "orvex") {
      throw std::runtime_error("usage: mof_files cim | orvex");
    }
    test::ModuleHost host;
    host.load();
    MofFile(*core::GetCimBroker().getSchema(), file == "cim").print();
  } catch (const std::exception& error) {
    std::cerr << "mof_files: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
