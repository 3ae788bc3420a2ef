// What every update request goes through before it is a job: the image is read and checked against
// the adapter, and prepared. Defined beside the job: the records bear its name, and so its lines.

#ifndef ORVEX_AGENT_IMAGEVERIFICATION_H_
#define ORVEX_AGENT_IMAGEVERIFICATION_H_

#include <cstdint>
#include <string>
#include <vector>

#include "Utils/FirmwareTypes.h"
#include "agent/TargetInProgress.h"

namespace agent {

// An image that may be written.
struct VerifiedImage {
  std::vector<std::uint8_t> bytes;
  std::vector<utils::FirmwareType> targetTypes;  // as getTargetTypes returns them
  TargetReservation reservation;
};

// Reads the image that `uri` names and has the flash library check it against the adapter `target`.
//
// The file is read once, into a buffer that is gone when this returns, or has been read ahead (see
// Os/FileAhead.h); one that is larger than the setting MaxImageSize is not read at all
// (EImageReadError, with the size, the limit and its place). Sets the target in progress; it stays
// set for the life of the returned reservation. Throws the types of JobErrors.h,
// utils::EInvalidParameter or utils::EUnspecifiedError; the target in progress is cleared first,
// unless an update was in progress before.
[[nodiscard]] VerifiedImage checkAndVerifyImage(
    const std::string& target, const std::string& uri,
    const std::vector<std::uint16_t>& installOptions,
    const std::vector<std::string>& installOptionsValues);

// Returns the image types that the values at the positions of kTargetTypes name
// ("IMG_PXE+IMG_UEFI"), in the order in which they are named, with repetitions; none when no such
// value names any. An empty name is FirmwareType::None. Throws utils::EInvalidParameter for an
// unknown name.
[[nodiscard]] std::vector<utils::FirmwareType> getTargetTypes(
    const std::vector<std::uint16_t>& installOptions,
    const std::vector<std::string>& installOptionsValues);

}  // namespace agent

#endif  // ORVEX_AGENT_IMAGEVERIFICATION_H_
