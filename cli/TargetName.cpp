#include "cli/TargetName.h"

#include "Utils/Exception.h"
#include "core/CimPath.h"
#include "midapi/AdapterId.h"

namespace cli {
namespace {

bool isObjectPath(const std::string& text) {
  try {
    return !core::CimPath(text).getClassName().empty();
  } catch (const utils::ESyntaxError&) {
    return false;
  }
}

}  // namespace

client::TargetName parseTarget(const std::string& text) {
  if (const auto port = ma::parsePortId(text)) {
    return {client::TargetKind::Port, ma::toString(*port), text};
  }
  if (const auto adapter = ma::parseAdapterAddress(text)) {
    return {client::TargetKind::Adapter, ma::toString(*adapter), text};
  }
  return {isObjectPath(text) ? client::TargetKind::ObjectPath : client::TargetKind::Unknown, text,
          text};
}

}  // namespace cli
