#include "agent/ImageVerification.h"

#include <optional>
#include <string_view>
#include <utility>

#include "Os/Files.h"
#include "Os/QuorvelConfig.h"
#include "Os/Uri.h"
#include "Utils/Conversions.h"
#include "Utils/Log.h"
#include "Utils/RefusalTexts.h"
#include "agent/JobErrors.h"
#include "cim/InstallOptions.h"
#include "midapi/MidApi.h"

namespace agent {
namespace {

constexpr utils::LogSource kLog{"Orvex_ConcreteJob"};
constexpr const char* kCheck = "Orvex_ConcreteJob::checkAndVerifyImage";
constexpr const char* kTypes = "Orvex_ConcreteJob::getTargetTypes";

TargetReservation reserveTarget(const std::string& target) {
  const std::string inProgress = getTargetInProgress();
  if (inProgress == target && !inProgress.empty()) {
    throw ETargetInUse(
        utils::format("Firmware update for %s is currently in progress", target.c_str()));
  }
  if (!inProgress.empty()) {
    throw EJobIsRunning(
        utils::format("Other job for %s is running at this moment", inProgress.c_str()));
  }
  return TargetReservation(target);
}

// The target is free before the refusal is told of: who reads that may ask again at once.
template <class Error>
[[noreturn]] void refuse(TargetReservation& reservation, const std::string& text) {
  reservation.release();
  throw Error(text);
}

os::FileContent readImageFile(const std::string& text, TargetReservation& reservation) {
  utils::logDebug(kLog, kCheck, "Checking URI : '%s' ", text.c_str());
  const utils::Uri uri(text);
  const std::string invalid = utils::format("URI: %s is invalid", text.c_str());
  if (!uri.isSupported()) {
    refuse<EInvalidUri>(reservation, invalid);
  }
  if (!uri.exists()) {
    refuse<EUriDoesNotExist>(reservation, invalid);
  }
  const std::string path = uri.getPath();
  const std::string readError =
      utils::format("Image read error: %s (%s)", text.c_str(), path.c_str());
  const std::int32_t size = os::getFileSize(path);
  const std::string excess =
      utils::QuorvelConfig::getInstance()->findSizeExcess(static_cast<std::uint32_t>(size));
  if (!excess.empty()) {
    refuse<EImageReadError>(reservation, readError + ": " + excess);
  }
  os::FileContent file = os::readContent(path, size);
  if (file.size != size) {
    refuse<EImageReadError>(reservation, readError);
  }
  return file;
}

[[noreturn]] void refuseDowngrade(TargetReservation& reservation, const std::string& uri) {
  refuse<EDowngradeDetected>(reservation,
                             utils::format("%s for %s. Try to use FORCE_INSTALL option.",
                                           utils::refusal::kDowngrade, uri.c_str()));
}

// A change of image types needs the force option and the configuration's consent.
void acceptOtherTypes(const std::string& uri, bool isForced, TargetReservation& reservation) {
  const bool isEnabled = utils::QuorvelConfig::getInstance()->getDowngradeEnable();
  utils::logDebug(kLog, kCheck, "DowngradeEnable: %d, ForceInstall: %d", isEnabled, isForced);
  if (isEnabled && isForced) {
    return;
  }
  if (isEnabled) {
    refuseDowngrade(reservation, uri);
  }
  refuse<EDowngradeDetected>(
      reservation,
      utils::format("The selected flash image cannot be used because it does not contain the %s. "
                    "Please select a flash file with matching image types.",
                    utils::refusal::kTypesDiffer));
}

// Returns for a status that lets the update go on, throws for any other.
void actOnStatus(ma::PrepareStatus status, const std::string& target, const std::string& uri,
                 bool isForced, TargetReservation& reservation) {
  switch (status) {
    case ma::PrepareStatus::Ok:
      return;
    case ma::PrepareStatus::InvalidImage:
      refuse<utils::EInvalidParameter>(
          reservation, utils::format("%s %s", utils::refusal::kInvalidParameter, uri.c_str()));
    case ma::PrepareStatus::NotForAdapter:
      refuse<EAdapterNotSupported>(
          reservation,
          utils::format("Image %s is not supported for adapter %s", uri.c_str(), target.c_str()));
    case ma::PrepareStatus::Downgrade:
      if (!isForced) {
        refuseDowngrade(reservation, uri);
      }
      return;
    case ma::PrepareStatus::TypesDiffer:
      return acceptOtherTypes(uri, isForced, reservation);
    case ma::PrepareStatus::NotUpdatable:
      refuse<ENotApplicableForTarget>(reservation,
                                      utils::format("Not applicable for %s", uri.c_str()));
    case ma::PrepareStatus::InternalFault:
      refuse<utils::EUnspecifiedError>(
          reservation, utils::format("Unspecified error occurred for %s", uri.c_str()));
  }
}

std::optional<utils::FirmwareType> findType(const std::string& name) {
  for (std::size_t index = 0; index < utils::kFirmwareTypeNames.size(); ++index) {
    const std::string candidate(utils::kFirmwareTypeNames[index]);
    utils::logDebug(kLog, kTypes, "index: %d", static_cast<int>(index));
    utils::logDebug(kLog, kTypes, "compare with %s", candidate.c_str());
    if (candidate == name) {
      utils::logDebug(kLog, kTypes, "added new image type - #%d", static_cast<int>(index));
      return static_cast<utils::FirmwareType>(index);
    }
  }
  return std::nullopt;
}

void addNamedTypes(const std::string& names, std::vector<utils::FirmwareType>& types,
                   TargetReservation& reservation) {
  for (const std::string& piece : utils::split(names, '+', utils::kNoQuote)) {
    const std::string name = utils::trim(piece);
    utils::logDebug(kLog, kTypes, "TeargetType: %s", name.c_str());
    const std::optional<utils::FirmwareType> type = findType(name);
    if (!type) {
      refuse<utils::EInvalidParameter>(
          reservation, utils::format("%s TargetTypes. %s %s", utils::refusal::kInvalidParameter,
                                     name.c_str(), utils::refusal::kUnknownType));
    }
    types.push_back(*type);
  }
}

std::vector<utils::FirmwareType> readTargetTypes(
    const std::vector<std::uint16_t>& installOptions,
    const std::vector<std::string>& installOptionsValues, TargetReservation& reservation) {
  utils::logDebug(kLog, kTypes, "InstallOptions Size: %d", static_cast<int>(installOptions.size()));
  utils::logDebug(kLog, kTypes, "InstallOptionsValues Size: %d",
                  static_cast<int>(installOptionsValues.size()));
  std::vector<utils::FirmwareType> types;
  for (std::size_t position = 0; position < installOptions.size(); ++position) {
    if (installOptions[position] != cim::kTargetTypes) {
      continue;
    }
    utils::logDebug(kLog, kTypes, "InstallOptions contains TargetTypes on %d position",
                    static_cast<int>(position));
    if (position >= installOptionsValues.size()) {
      utils::logDebug(kLog, kTypes, "No TargetTypes detected in values");
      return {};
    }
    utils::logDebug(kLog, kTypes, "InstallOptionsValues contains %d elements",
                    static_cast<int>(installOptionsValues.size()));
    addNamedTypes(installOptionsValues[position], types, reservation);
    if (types.empty()) {
      utils::logDebug(kLog, kTypes, "Values does not contain any TargetTypes");
      return {};
    }
  }
  for (std::size_t index = 0; index < types.size(); ++index) {
    utils::logDebug(kLog, kTypes, "Return result[%d]=%d", static_cast<int>(index),
                    static_cast<int>(types[index]));
  }
  if (types.empty()) {
    utils::logDebug(kLog, kTypes, "No TargetTypes defined");
  }
  return types;
}

}  // namespace

VerifiedImage checkAndVerifyImage(const std::string& target, const std::string& uri,
                                  const std::vector<std::uint16_t>& installOptions,
                                  const std::vector<std::string>& installOptionsValues) {
  VerifiedImage image;
  image.reservation = reserveTarget(target);
  const os::FileContent file = readImageFile(uri, image.reservation);
  const auto fileSize = static_cast<std::uint32_t>(file.size);
  // What is prepared is the file or a selection of its images, and so never larger.
  image.bytes.resize(fileSize);
  image.targetTypes = readTargetTypes(installOptions, installOptionsValues, image.reservation);

  utils::logDebug(kLog, kCheck, "Start preparing the image");
  std::uint32_t size = fileSize;
  const ma::PrepareStatus status = ma::prepareFlashImage(
      target, file.bytes.get(), fileSize, image.bytes.data(), size, image.targetTypes);
  utils::logDebug(kLog, kCheck, "Image prepared %d", static_cast<int>(status));
  actOnStatus(status, target, uri, cim::hasOption(installOptions, cim::kForceInstallation),
              image.reservation);
  image.bytes.resize(size);
  return image;
}

std::vector<utils::FirmwareType> getTargetTypes(
    const std::vector<std::uint16_t>& installOptions,
    const std::vector<std::string>& installOptionsValues) {
  TargetReservation none;
  return readTargetTypes(installOptions, installOptionsValues, none);
}

}  // namespace agent
