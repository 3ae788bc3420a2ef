#include "core/Qualifiers.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "core/ClassDeclaration.h"

namespace core {
namespace {

constexpr QualifierScope kClasses{.atClass = true, .atAssociation = true, .atIndication = true};
constexpr QualifierScope kAnything{true, true, true, true, true, true, true};
constexpr QualifierScope kProperties{.atProperty = true, .atReference = true};
constexpr QualifierScope kParameters{.atParameter = true};
constexpr QualifierScope kOverriding{.atProperty = true, .atReference = true, .atMethod = true};
constexpr QualifierScope kValues{.atProperty = true, .atMethod = true, .atParameter = true};

constexpr QualifierFlavor kOverridable{};
constexpr QualifierFlavor kTranslatable{.isTranslatable = true};
constexpr QualifierFlavor kFixed{.isOverridable = false};
constexpr QualifierFlavor kRestricted{.isInherited = false};

// In the order of QualifierName.
constexpr QualifierDeclaration kQualifiers[] = {
    {"Abstract", kCimBoolean, false, kClasses, kRestricted},
    {"Association", kCimBoolean, false, {.atAssociation = true}, kFixed},
    {"Description", kCimString, false, kAnything, kTranslatable},
    {"In", kCimBoolean, true, kParameters, kFixed},
    {"Key", kCimBoolean, false, kProperties, kFixed},
    {"Out", kCimBoolean, false, kParameters, kFixed},
    {"Override", kCimString, false, kOverriding, kRestricted},
    {"PUnit", kCimString, false, kValues, kOverridable},
    {"Units", kCimString, false, kValues, kTranslatable},
    {"ValueMap", kCimStringArray, false, kValues, kOverridable},
    {"Values", kCimStringArray, false, kValues, kTranslatable},
    {"Version",
     kCimString,
     false,
     kClasses,
     {.isOverridable = true, .isInherited = false, .isTranslatable = true}},
    {"Write", kCimBoolean, false, kProperties, kOverridable},
};

static_assert(std::size(kQualifiers) == static_cast<std::size_t>(QualifierName::Write) + 1);

}  // namespace

std::span<const QualifierDeclaration> getQualifiers() {
  return kQualifiers;
}

const QualifierDeclaration& getQualifier(QualifierName name) {
  return kQualifiers[static_cast<std::size_t>(name)];
}

const QualifierDeclaration* findQualifier(std::string_view name) {
  const auto* const found = std::find_if(
      std::begin(kQualifiers), std::end(kQualifiers),
      [name](const QualifierDeclaration& candidate) { return isSameName(candidate.name, name); });
  return found != std::end(kQualifiers) ? found : nullptr;
}

}  // namespace core
