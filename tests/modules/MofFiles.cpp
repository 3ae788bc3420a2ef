// Prints a file of schema/: the declarations of the classes of all agents in MOF (DSP0004). For
// scripts/generate-mof, and for the test that the files are current.
//
// usage: mof_files cim | orvex

#include <algorithm>
#include <cstddef>
#include <exception>
#include <iostream>
#include <iterator>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/CimBroker.h"
#include "core/ClassQualifiers.h"
#include "core/ClassTexts.h"
#include "tests/modules/ModuleHost.h"

namespace {

constexpr std::string_view kCimPrefix = "CIM_";
constexpr std::size_t kWidestList = 80;

constexpr std::string_view kCimIntroduction =
    R"(// The standard classes, as far as the agents declare them.
//
// Printed by the running agents; scripts/generate-mof writes the file anew.

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

std::string quote(std::string_view text) {
  std::string quoted = "\"";
  for (const char sign : text) {
    quoted += sign == '"' || sign == '\\' ? "\\" : "";
    quoted += sign;
  }
  return quoted + "\"";
}

// Returns the texts one behind another, on lines that are not too long.
std::string list(const std::vector<std::string_view>& texts, const std::string& indent) {
  std::string all;
  std::size_t width = 0;
  for (const std::string_view text : texts) {
    const std::string quoted = quote(text);
    width += quoted.size();
    all += all.empty() ? "" : ",";
    all += width > kWidestList ? "\n" + indent + "    " : all.empty() ? "" : " ";
    width = width > kWidestList ? quoted.size() : width;
    all += quoted;
  }
  return all;
}

std::string toText(const core::Qualifier& qualifier, const std::string& indent) {
  const core::QualifierDeclaration& declaration = *qualifier.declaration;
  const std::string name(declaration.name);
  if (declaration.type == core::kCimBoolean) {
    return name + (qualifier.isTrue ? "" : "(false)");
  }
  return core::isArray(declaration.type) ? name + "{" + list(qualifier.texts, indent) + "}"
                                         : name + "(" + quote(qualifier.texts.front()) + ")";
}

// Whether it is a text of people's, which has a line of its own.
bool isLong(const core::Qualifier& qualifier) {
  return qualifier.declaration == &core::getQualifier(core::QualifierName::Description) ||
         core::isArray(qualifier.declaration->type);
}

// Returns them in brackets, with what parts them from the element behind; nothing for none.
std::string toText(const core::ClassQualifiers::List& qualifiers, const std::string& indent) {
  if (qualifiers.empty()) {
    return indent;
  }
  std::string text = indent + "[";
  std::string separator;
  for (const core::Qualifier& qualifier : qualifiers) {
    const bool hasOwnLine = isLong(qualifier) && !separator.empty();
    text += separator;
    text += (hasOwnLine ? "\n" + indent + " " : separator.empty() ? "" : " ");
    text += toText(qualifier, indent);
    separator = ",";
  }
  const bool isShort = std::none_of(qualifiers.begin(), qualifiers.end(), isLong);
  return text + (isShort && !indent.empty() ? "] " : "]\n" + indent);
}

std::string toScope(const core::QualifierScope& scope) {
  const std::pair<const char*, bool> places[] = {
      {"class", scope.atClass},           {"association", scope.atAssociation},
      {"indication", scope.atIndication}, {"property", scope.atProperty},
      {"reference", scope.atReference},   {"method", scope.atMethod},
      {"parameter", scope.atParameter},
  };
  std::string text;
  for (const auto& [name, isThere] : places) {
    text += isThere ? (text.empty() ? "" : ", ") + std::string(name) : "";
  }
  const bool isAny = std::all_of(std::begin(places), std::end(places),
                                 [](const auto& place) { return place.second; });
  return isAny ? "any" : text;
}

std::string toFlavor(const core::QualifierFlavor& flavor) {
  std::string text = !flavor.isInherited    ? "Restricted"
                     : flavor.isOverridable ? "EnableOverride"
                                            : "DisableOverride";
  return text + (flavor.isTranslatable ? ", Translatable" : "");
}

void printQualifier(const core::QualifierDeclaration& declaration) {
  const bool isBoolean = declaration.type == core::kCimBoolean;
  std::cout << "Qualifier " << declaration.name << " : " << core::getTypeName(declaration.type)
            << (core::isArray(declaration.type) ? "[]" : "") << " = "
            << (!isBoolean                    ? "null"
                : declaration.isTrueByDefault ? "true"
                                              : "false")
            << ", Scope(" << toScope(declaration.scope) << "), Flavor("
            << toFlavor(declaration.flavor) << ");\n";
}

class MofFile {
 public:
  MofFile(const core::CimSchema& schema, const core::ClassTexts& texts, bool isStandardFile)
      : m_schema(schema),
        m_qualifiers(schema, texts, core::ClassQualifiers::Texts::Own),
        m_isStandardFile(isStandardFile) {}

  void print() {
    std::cout << (m_isStandardFile ? kCimIntroduction : kOrvexIntroduction);
    if (m_isStandardFile) {
      for (const core::QualifierDeclaration& declaration : core::getQualifiers()) {
        printQualifier(declaration);
      }
    }
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
              << toText(m_qualifiers.ofClass(declaration), "") << "class " << declaration.name
              << (superclass != nullptr ? " : " + superclass->name : "") << " {\n";
    for (const core::PropertyDeclaration& property : declaration.properties) {
      if (property.origin == declaration.name) {
        std::cout << toText(m_qualifiers.ofProperty(declaration, property), "  ")
                  << toText(property) << ";\n";
      }
    }
    for (const core::MethodDeclaration& method : declaration.methods) {
      if (method.origin == declaration.name) {
        print(declaration, method);
      }
    }
    std::cout << "};\n";
  }

  void print(const core::ClassDeclaration& declaration,
             const core::MethodDeclaration& method) const {
    std::cout << toText(m_qualifiers.ofMethod(declaration, method), "  ")
              << core::getTypeName(method.returnType) << " " << method.name << "(";
    const char* separator = "\n";
    for (const core::ParameterDeclaration& parameter : method.parameters) {
      std::cout << separator << toText(m_qualifiers.ofParameter(method, parameter), "    ")
                << toText(parameter);
      separator = ",\n";
    }
    std::cout << ");\n";
  }

  const core::CimSchema& m_schema;
  const core::ClassQualifiers m_qualifiers;
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
    const std::shared_ptr<const core::CimSchema> schema = core::GetCimBroker().getSchema();
    const core::ClassTexts texts = core::getClassTexts(core::GetCimBroker());
    MofFile(*schema, texts, file == "cim").print();
  } catch (const std::exception& error) {
    std::cerr << "mof_files: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
