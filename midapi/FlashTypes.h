// The numbers of the flash library's answers and questions.

#ifndef ORVEX_MIDAPI_FLASHTYPES_H_
#define ORVEX_MIDAPI_FLASHTYPES_H_

#include <cstdint>

namespace ma {

// What the adapter boots its host from. None is boot type 0: no network boot.
enum class BootType : std::uint32_t { None = 0, Pxe = 1, Iscsi = 2, Fcoe = 3, Uefi = 4 };

// What prepareFlashImage found out about an image, in the order in which it looks (see MidApi.h).
enum class PrepareStatus : std::int32_t {
  Ok = 0,
  InvalidImage = 1,
  NotForAdapter = 2,
  Downgrade = 3,
  TypesDiffer = 4,
  NotUpdatable = 5,
  InternalFault = 6,
};

// What an update from a firmware file would mean for an adapter.
enum class ImageComparison {
  NotForAdapter,  // the file is no valid chain of images, or none of them is for the adapter
  NotUpdatable,   // the adapter's firmware cannot be replaced
  TypesDiffer,    // the file's image types are not those that the adapter holds
  Older,
  SameVersion,  // the same versions in other bytes
  SameContent,  // the very bytes that the flash holds
  Newer,
  // The adapter is unknown or unreadable, the image cannot be prepared, or versions are not known.
  Unknown,
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_FLASHTYPES_H_
