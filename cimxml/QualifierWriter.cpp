#include "cimxml/QualifierWriter.h"

#include <string_view>

#include "core/ClassDeclaration.h"

namespace cimxml {
namespace {

void appendBoolean(Buffer& out, bool value) {
  out += value ? "<VALUE>TRUE</VALUE>" : "<VALUE>FALSE</VALUE>";
}

void appendText(Buffer& out, std::string_view text) {
  out += "<VALUE>";
  appendEscaped(out, text);
  out += "</VALUE>";
}

void appendFlavor(Buffer& out, const core::QualifierFlavor& flavor) {
  if (!flavor.isOverridable) {
    out += " OVERRIDABLE=\"false\"";
  }
  if (!flavor.isInherited) {
    out += " TOSUBCLASS=\"false\"";
  }
  if (flavor.isTranslatable) {
    out += " TRANSLATABLE=\"true\"";
  }
}

void appendScope(Buffer& out, const core::QualifierScope& scope) {
  const struct {
    std::string_view name;
    bool isThere;
  } kPlaces[] = {
      {" CLASS", scope.atClass},           {" ASSOCIATION", scope.atAssociation},
      {" REFERENCE", scope.atReference},   {" PROPERTY", scope.atProperty},
      {" METHOD", scope.atMethod},         {" PARAMETER", scope.atParameter},
      {" INDICATION", scope.atIndication},
  };
  out += "<SCOPE";
  for (const auto& place : kPlaces) {
    if (place.isThere) {
      out += place.name;
      out += "=\"true\"";
    }
  }
  out += "/>";
}

}  // namespace

void appendQualifier(Buffer& out, const core::Qualifier& qualifier, bool isPropagated) {
  const core::QualifierDeclaration& declaration = *qualifier.declaration;
  out += "<QUALIFIER";
  appendAttribute(out, "NAME", declaration.name);
  appendAttribute(out, "TYPE", core::getTypeName(declaration.type));
  if (isPropagated) {
    out += " PROPAGATED=\"true\"";
  }
  appendFlavor(out, declaration.flavor);
  out += '>';
  if (declaration.type == core::kCimBoolean) {
    appendBoolean(out, qualifier.isTrue);
  } else if (core::isArray(declaration.type)) {
    out += "<VALUE.ARRAY>";
    for (const std::string_view text : qualifier.texts) {
      appendText(out, text);
    }
    out += "</VALUE.ARRAY>";
  } else {
    appendText(out, qualifier.texts.front());
  }
  appendEndTag(out, "QUALIFIER");
}

void appendQualifierDeclaration(Buffer& out, const core::QualifierDeclaration& declaration) {
  out += "<QUALIFIER.DECLARATION";
  appendAttribute(out, "NAME", declaration.name);
  appendAttribute(out, "TYPE", core::getTypeName(declaration.type));
  appendAttribute(out, "ISARRAY", core::isArray(declaration.type) ? "true" : "false");
  appendFlavor(out, declaration.flavor);
  out += '>';
  appendScope(out, declaration.scope);
  if (declaration.type == core::kCimBoolean) {
    appendBoolean(out, declaration.isTrueByDefault);
  }
  appendEndTag(out, "QUALIFIER.DECLARATION");
}

}  // namespace cimxml
