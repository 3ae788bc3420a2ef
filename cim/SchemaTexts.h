// What there is to say of the schema's classes: descriptions, value names and units of those in
// cim/, and of the served classes that several agents have. The tables are beside this file, a file
// for each group of classes.

#ifndef ORVEX_CIM_SCHEMATEXTS_H_
#define ORVEX_CIM_SCHEMATEXTS_H_

#include <string_view>

#include "Utils/Export.h"
#include "core/ClassTexts.h"

namespace cim {

// The version of the DMTF CIM schema that the CIM_ classes are taken from, and that of the Orvex_
// classes.
inline constexpr std::string_view kSchemaVersion = "2.41.0";
inline constexpr std::string_view kOrvexVersion = "1.0.0";

ORVEX_CORE_API void addSchemaTexts(core::ClassTexts& texts);

}  // namespace cim

#endif  // ORVEX_CIM_SCHEMATEXTS_H_
