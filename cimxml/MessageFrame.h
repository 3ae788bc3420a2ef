// What every message begins and ends with, whoever sends it (DSP0201: CIM and MESSAGE), with the
// versions that are written. The reader takes any minor version of them.

#ifndef ORVEX_CIMXML_MESSAGEFRAME_H_
#define ORVEX_CIMXML_MESSAGEFRAME_H_

#include <string_view>

#include "cimxml/Buffer.h"

namespace cimxml {

// <?xml ...><CIM ...><MESSAGE ID="..." ...> and its end.
void beginMessage(Buffer& out, std::string_view messageId);
void endMessage(Buffer& out);

}  // namespace cimxml

#endif  // ORVEX_CIMXML_MESSAGEFRAME_H_
