// What the records of a refused update are recognised by. Whoever logs a refusal builds its text
// around these, and whoever gives advice looks for them, so that neither can be reworded alone.
// Constant data.

#ifndef ORVEX_UTILS_REFUSALTEXTS_H_
#define ORVEX_UTILS_REFUSALTEXTS_H_

namespace utils::refusal {

// Parts of a text.
inline constexpr const char* kDowngrade = "Downgrade was detected";
inline constexpr const char* kTypesDiffer = "same image types";
inline constexpr const char* kUnknownType = "is not recognized";
inline constexpr const char* kInvalidParameter = "Invalid parameter detected for";
inline constexpr const char* kCouldNotOpen = "Could not open the file";
inline constexpr const char* kFileInUse = "it is in use by another program";
inline constexpr const char* kImageTooLarge = "more than MaxImageSize allows";
inline constexpr const char* kIsDirectory = "points to a directory";

// What stands before the processes that may have the flash lock.
inline constexpr const char* kSemaphoreIsOpenIn = "its semaphore is open in ";
// What stands behind them where there may be more.
inline constexpr const char* kMayBeOpenInOthers = "perhaps others, which this user is not shown";

// Types of failures, as texts begin with them.
inline constexpr const char* kTargetInUse = "ETargetInUse:";
inline constexpr const char* kJobIsRunning = "EJobIsRunning:";
inline constexpr const char* kInvalidUri = "EInvalidUri:";
inline constexpr const char* kUriDoesNotExist = "EUriDoesNotExist:";
inline constexpr const char* kImageReadError = "EImageReadError:";
inline constexpr const char* kAdapterNotSupported = "EAdapterNotSupported:";
inline constexpr const char* kDowngradeDetected = "EDowngradeDetected:";
inline constexpr const char* kNotApplicableForTarget = "ENotApplicableForTarget:";

// The whole error text of a job that could not have the flash.
inline constexpr const char* kTimeout = "Timeout Error";

}  // namespace utils::refusal

#endif  // ORVEX_UTILS_REFUSALTEXTS_H_
