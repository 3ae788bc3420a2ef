#include "cli/LocalReason.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

#include "Utils/Conversions.h"
#include "Utils/FirmwareTypes.h"
#include "cli/ImageFile.h"
#include "cli/LocalTarget.h"
#include "client/Fault.h"
#include "midapi/MidApi.h"

namespace cli {
namespace {

std::optional<std::vector<utils::FirmwareType>> parseTypes(const std::string& names) {
  std::vector<utils::FirmwareType> types;
  for (const std::string& piece : utils::split(names, '+', utils::kNoQuote)) {
    const auto& known = utils::kFirmwareTypeNames;
    const auto found = std::find(known.begin(), known.end(), utils::trim(piece));
    if (found == known.end()) {
      return std::nullopt;
    }
    types.push_back(static_cast<utils::FirmwareType>(found - known.begin()));
  }
  return types;
}

}  // namespace

std::string findLocalReason(const std::string& target, const std::string& file,
                            const std::string& types) {
  const auto parsedTypes = parseTypes(types);
  if (!parsedTypes || file.empty()) {
    return {};
  }
  try {
    const std::string port = findLocalPort(target);
    const ImageFile image(file);
    return ma::explainFlashImage(port, image.bytes().data(),
                                 static_cast<std::uint32_t>(image.bytes().size()), *parsedTypes);
  } catch (const client::Fault&) {
    return {};  // that is told already
  }
}

}  // namespace cli
