#include "daemon/MessageFields.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>

#include "Utils/Ascii.h"
#include "Utils/Conversions.h"
#include "Utils/Exception.h"
#include "cimxml/ObjectName.h"
#include "cimxml/ObjectNameComparison.h"
#include "http/Status.h"

namespace quorveld {
namespace {

constexpr int kHexadecimal = 16;
constexpr std::size_t kHexDigits = 2;

constexpr std::string_view kMediaTypes[] = {"application/xml", "text/xml"};
constexpr std::string_view kCharacterSets[] = {"utf-8", "utf8"};

// Fields by which a message is judged, here and on its way: with two of them, who judges by the
// first and who judges by the last would see different messages.
struct SingleField {
  std::string_view name;
  const char* cimError;  // of a request that has it twice
};

constexpr SingleField kSingleFields[] = {
    {"Content-Encoding", ""},
    {"CIMOperation", "unsupported-operation"},
    {"CIMProtocolVersion", "unsupported-protocol-version"},
    {"CIMBatch", "multiple-requests-unsupported"},
    {"CIMMethod", "header-mismatch"},
    {"CIMObject", "header-mismatch"},
};

template <std::size_t Count>
bool isOneOf(std::string_view text, const std::string_view (&list)[Count]) {
  return std::any_of(std::begin(list), std::end(list), [text](std::string_view entry) {
    return utils::isSameIgnoringCase(text, entry);
  });
}

// Returns whether a Content-Type means XML in UTF-8. Parameters but charset mean nothing here.
bool isXmlInUtf8(std::string_view contentType) {
  bool isType = true;
  while (true) {
    const std::size_t end = contentType.find(';');
    const std::string part = utils::trim(std::string(contentType.substr(0, end)));
    if (isType && !isOneOf(part, kMediaTypes)) {
      return false;
    }
    const std::size_t sign = part.find('=');
    if (!isType && sign != std::string::npos &&
        utils::isSameIgnoringCase(utils::trim(part.substr(0, sign)), "charset")) {
      if (!isOneOf(utils::unquote(utils::trim(part.substr(sign + 1))), kCharacterSets)) {
        return false;
      }
    }
    if (end == std::string_view::npos) {
      return true;
    }
    isType = false;
    contentType.remove_prefix(end + 1);
  }
}

[[noreturn]] void refuseMismatch(const std::string& text) {
  throw FieldsFault(http::kStatusBadRequest, "header-mismatch", text);
}

bool isTarget(const std::string& object, const cimxml::Request& message) {
  if (!message.isExtrinsic) {
    return utils::isSameIgnoringCase(object, message.nameSpace);
  }
  const std::size_t colon = object.find(':');
  if (colon == std::string::npos ||
      !utils::isSameIgnoringCase(object.substr(0, colon), message.nameSpace)) {
    return false;
  }
  try {
    return cimxml::isSameObject(cimxml::parseObjectPath(object.substr(colon + 1)), message.target);
  } catch (const utils::ESyntaxError&) {
    return false;
  }
}

}  // namespace

void demandCimMessage(const http::Request& request) {
  for (const SingleField& field : kSingleFields) {
    if (request.countFields(field.name) > 1) {
      throw FieldsFault(http::kStatusBadRequest, field.cimError,
                        "The header field " + std::string(field.name) +
                            " stands there several times; send it once.");
    }
  }
  const std::string_view encoding = request.field("Content-Encoding");
  if (!isXmlInUtf8(request.field("Content-Type")) ||
      (!encoding.empty() && !utils::isSameIgnoringCase(encoding, "identity"))) {
    throw FieldsFault(http::kStatusUnsupportedMediaType, "",
                      "A CIM message is application/xml or text/xml in UTF-8, without "
                      "content encoding.");
  }
  if (!utils::isSameIgnoringCase(request.field("CIMOperation"), "MethodCall")) {
    throw FieldsFault(http::kStatusBadRequest, "unsupported-operation",
                      "The header field CIMOperation has to be MethodCall.");
  }
  if (!request.field("CIMBatch").empty()) {
    throw FieldsFault(http::kStatusNotImplemented, "multiple-requests-unsupported",
                      "Several requests in one message are not taken.");
  }
  const std::string_view version = request.field("CIMProtocolVersion");
  if (!version.empty() && !version.starts_with("1.")) {
    throw FieldsFault(http::kStatusNotImplemented, "unsupported-protocol-version",
                      "The header field CIMProtocolVersion has to be 1.x.");
  }
}

void demandSameFields(const http::Request& request, const cimxml::Request& message) {
  if (decodePercent(request.field("CIMMethod")) != message.name) {
    refuseMismatch("The header field CIMMethod does not name the method of the message.");
  }
  if (!isTarget(decodePercent(request.field("CIMObject")), message)) {
    refuseMismatch("The header field CIMObject does not name the object of the message.");
  }
}

std::string decodePercent(std::string_view text) {
  std::string decoded;
  decoded.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    unsigned char byte = 0;
    const char* const digits = text.data() + i + 1;
    if (text[i] == '%' && i + kHexDigits < text.size() &&
        std::from_chars(digits, digits + kHexDigits, byte, kHexadecimal).ptr ==
            digits + kHexDigits) {
      decoded += static_cast<char>(byte);
      i += kHexDigits;
    } else {
      decoded += text[i];
    }
  }
  return decoded;
}

}  // namespace quorveld
