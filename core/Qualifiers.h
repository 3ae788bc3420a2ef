// The qualifiers that the declarations of classes carry (DSP0004): what each is declared to be.
// Constant data; any thread may call.

#ifndef ORVEX_CORE_QUALIFIERS_H_
#define ORVEX_CORE_QUALIFIERS_H_

#include <span>
#include <string_view>

#include "Utils/Export.h"
#include "core/CimProperty.h"

namespace core {

// What a qualifier may stand at.
struct QualifierScope {
  bool atClass = false;
  bool atAssociation = false;
  bool atIndication = false;
  bool atProperty = false;
  bool atReference = false;
  bool atMethod = false;
  bool atParameter = false;
};

struct QualifierFlavor {
  bool isOverridable = true;
  bool isInherited = true;  // ToSubclass; else Restricted
  bool isTranslatable = false;
};

struct QualifierDeclaration {
  std::string_view name;
  CimType type = kCimBoolean;
  // Where it does not stand: of a boolean, true or false. Everything else is NULL then.
  bool isTrueByDefault = false;
  QualifierScope scope;
  QualifierFlavor flavor;
};

enum class QualifierName {
  Abstract,
  Association,
  Description,
  In,
  Key,
  Out,
  Override,
  PUnit,
  Units,
  ValueMap,
  Values,
  Version,
  Write,
};

// Returns all of them, by name.
[[nodiscard]] ORVEX_CORE_API std::span<const QualifierDeclaration> getQualifiers();

[[nodiscard]] ORVEX_CORE_API const QualifierDeclaration& getQualifier(QualifierName name);

// Names are compared without regard to case. Returns null when there is none of that name.
[[nodiscard]] ORVEX_CORE_API const QualifierDeclaration* findQualifier(std::string_view name);

}  // namespace core

#endif  // ORVEX_CORE_QUALIFIERS_H_
