#include "bench/Questions.h"

#include <cctype>

#include "Os/Environment.h"
#include "Utils/Format.h"

namespace bench {
namespace {

constexpr const char* kNameSpacePath =
    "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"DCIM\"/>"
    "<NAMESPACE NAME=\"zolan\"/></LOCALNAMESPACEPATH>";

std::string makeKey(const std::string& name, const std::string& value) {
  return "<KEYBINDING NAME=\"" + name + "\"><KEYVALUE VALUETYPE=\"string\">" + value +
         "</KEYVALUE></KEYBINDING>";
}

std::string makeName(const std::string& className, const std::string& nameKey,
                     const std::string& name) {
  return "<INSTANCENAME CLASSNAME=\"" + className + "\">" +
         makeKey("SystemCreationClassName", "CIM_UnitaryComputerSystem") +
         makeKey("SystemName", os::getComputerName()) + makeKey("CreationClassName", className) +
         makeKey(nameKey, name) + "</INSTANCENAME>";
}

// Returns the path of the service as a header field has it: all but its letters, digits and
// underscores behind per cent signs (DSP0200, CIMObject).
std::string serviceObject() {
  const std::string path =
      "root/DCIM/zolan:Orvex_SoftwareInstallationService.SystemCreationClassName="
      "\"CIM_UnitaryComputerSystem\",SystemName=\"" +
      os::getComputerName() +
      "\",CreationClassName=\"Orvex_SoftwareInstallationService\",Name=\"Orvex:FirmwareUpdate\"";
  std::string encoded;
  for (const char sign : path) {
    if (std::isalnum(static_cast<unsigned char>(sign)) != 0 || sign == '_') {
      encoded += sign;
    } else {
      encoded += utils::format("%%%02X", static_cast<unsigned char>(sign));
    }
  }
  return encoded;
}

std::string makeHttpRequest(const std::string& method, const std::string& object,
                            const std::string& call) {
  const std::string body =
      "<?xml version=\"1.0\" encoding=\"utf-8\"?><CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">"
      "<MESSAGE ID=\"1\" PROTOCOLVERSION=\"1.0\"><SIMPLEREQ>" +
      call + "</SIMPLEREQ></MESSAGE></CIM>";
  return "POST /cimom HTTP/1.1\r\nHost: 127.0.0.1\r\n"
         "Content-Type: application/xml; charset=utf-8\r\nCIMOperation: MethodCall\r\nCIMMethod: " +
         method + "\r\nCIMObject: " + object +
         "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

}  // namespace

std::string askOperation(const std::string& operation,
                         const std::vector<QuestionParameter>& parameters) {
  std::string call = "<IMETHODCALL NAME=\"" + operation + "\">" + kNameSpacePath;
  for (const QuestionParameter& parameter : parameters) {
    call += "<IPARAMVALUE NAME=\"" + parameter.name + "\">" + parameter.xml + "</IPARAMVALUE>";
  }
  return makeHttpRequest(operation, "root%2FDCIM%2Fzolan", call + "</IMETHODCALL>");
}

std::string className(const std::string& name) {
  return "<CLASSNAME NAME=\"" + name + "\"/>";
}

std::string text(const std::string& value) {
  return "<VALUE>" + value + "</VALUE>";
}

std::string serviceName() {
  return makeName("Orvex_SoftwareInstallationService", "Name", "Orvex:FirmwareUpdate");
}

std::string portName(const std::string& identity) {
  return makeName("Orvex_EthernetPort", "DeviceID", identity);
}

std::string askInstallation(const std::string& uri, const std::string& identity) {
  return makeHttpRequest(
      "InstallFromURI", serviceObject(),
      "<METHODCALL NAME=\"InstallFromURI\"><LOCALINSTANCEPATH>" + std::string(kNameSpacePath) +
          serviceName() + "</LOCALINSTANCEPATH><PARAMVALUE NAME=\"URI\" PARAMTYPE=\"string\">" +
          text(uri) +
          "</PARAMVALUE><PARAMVALUE NAME=\"Target\" PARAMTYPE=\"reference\"><VALUE.REFERENCE>" +
          portName(identity) +
          "</VALUE.REFERENCE></PARAMVALUE><PARAMVALUE NAME=\"InstallOptions\" "
          "PARAMTYPE=\"uint16\"><VALUE.ARRAY><VALUE>5</VALUE></VALUE.ARRAY></PARAMVALUE>"
          "<PARAMVALUE NAME=\"InstallOptionsValues\" PARAMTYPE=\"string\"/></METHODCALL>");
}

}  // namespace bench
