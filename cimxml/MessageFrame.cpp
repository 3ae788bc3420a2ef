#include "cimxml/MessageFrame.h"

namespace cimxml {

void beginMessage(Buffer& out, std::string_view messageId) {
  out +=
      "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
      "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE";
  appendAttribute(out, "ID", messageId);
  out += " PROTOCOLVERSION=\"1.0\">";
}

void endMessage(Buffer& out) {
  out += "</MESSAGE></CIM>\n";
}

}  // namespace cimxml
