// The adapter flash library, as the agents call it.
//
// Adapters are named by the identifier of one of their ports, "dddd:bb:ss.f": PCI segment, bus,
// device and function in lower-case hexadecimal ("0000:03:00.0"). The ports of one adapter share
// its flash, so a write through one port changes what the others report.
//
// Every operation may be called from any thread, except that flash writes of one machine must not
// overlap: the caller serialises them (os::OSLocker does). Every query reads the state of the
// adapter afresh. No operation throws anything but std::bad_alloc; failures are answered as each
// one says.

#ifndef ORVEX_MIDAPI_MIDAPI_H_
#define ORVEX_MIDAPI_MIDAPI_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "Utils/FirmwareTypes.h"
#include "Utils/FlashSettings.h"
#include "midapi/AdapterListing.h"
#include "midapi/Export.h"
#include "midapi/FlashTypes.h"

namespace ma {

// Reads the settings of the library; called at each operation, by any thread, and never gone.
using SettingsReader = utils::FlashSettings (*)();

// Says where settings come from; by default they are those of a FlashSettings that nobody changed.
// Where the environment has ORVEX_ADAPTERS, virtual adapters in that directory count, and no
// others.
ORVEX_MIDAPI_API void useSettings(SettingsReader reader);

// Returns which kinds of adapters count now, by the settings, the environment and the platform.
[[nodiscard]] ORVEX_MIDAPI_API std::vector<AdapterKind> adapterKinds();

// Returns the identifiers of all ports of all adapters, ordered by PCI address.
[[nodiscard]] ORVEX_MIDAPI_API utils::StringArray enumerateAdapters();

// Returns all that is known of all adapters, and what a person should mend. Throws AdapterFault,
// which no other operation does, where it cannot be told which adapters there are.
[[nodiscard]] ORVEX_MIDAPI_API AdapterList listAdapters();

// Returns of all adapters what listAdapters tells but for problems, notes and what is told once:
// for programs, which ask often. Without their flash it costs little more than enumerateAdapters.
// Leaves out what that leaves out.
[[nodiscard]] ORVEX_MIDAPI_API std::vector<AdapterListing> outlineAdapters(
    OutlineDepth depth = OutlineDepth::Description);

// Returns what somebody should mend or know of the adapters, in a line each that begins with the
// adapter: what became of a write whose writer died before it knew how that ended (none of virtual
// adapters, whose updates are made or taken back), and that two adapters have one address.
[[nodiscard]] ORVEX_MIDAPI_API std::vector<std::string> findAdapterProblems();

// Returns what the driver of the adapter says of its firmware, running and stored; nothing where it
// does not tell. Of an adapter whose flash is being written, what was known before.
[[nodiscard]] ORVEX_MIDAPI_API std::vector<FirmwareVersions> getFirmwareVersions(
    const std::string& adapter);

// Fills `versions` with the firmware components in the adapter's flash, in flash order: the images
// that are for the adapter and of a known type. Empties it when the adapter is unknown or its flash
// holds no valid image chain.
ORVEX_MIDAPI_API void getAdapterFirmwareVersion(const std::string& adapter,
                                                std::vector<utils::FirmwareVersionInfo>& versions);

// Returns the port's PCI location, taken from its identifier; all zero when that is malformed.
[[nodiscard]] ORVEX_MIDAPI_API utils::PCIAddr getPCIAddress(const std::string& adapter);

// Returns whether two identifiers are of ports of one adapter: their PCI segment, bus and device
// are the same. A PCI location lacks the segment, and so cannot tell. False when either identifier
// is malformed; whether the adapter exists does not matter.
[[nodiscard]] ORVEX_MIDAPI_API bool isSameAdapter(const std::string& one, const std::string& other);

// Returns true when the adapter is known and its firmware may be replaced.
[[nodiscard]] ORVEX_MIDAPI_API bool getCanBeUpdated(const std::string& adapter);

// An update of one adapter, for the span of a scope: boot types, flash and capability word change
// together or not at all, whatever fails and whatever kills the process or the machine.
//
// While it lives, setBootType and writeFlashImage of this process for any port of the adapter check
// and prepare what they are asked for, and answer for that; updateCapabilityWord makes all of it at
// once, and until then every query answers from what was before. What updateCapabilityWord has not
// made is taken back at destruction: boot types that were set before a write that fails are what
// they were. A process that dies leaves the adapter as it was before, or, once updateCapabilityWord
// has decided the update, as it is after; then the next query or change by anybody who may write
// the adapter's files does what is left to be done, and all others answer as if it were done.
//
// The operations for an adapter without such an object make their change at once. Of two objects
// for one adapter in one process the second does nothing. An adapter that another process changes
// at the time is waited for, for some seconds; then the operation fails.
class ORVEX_MIDAPI_API FlashUpdate {
 public:
  // `adapter` may be any port of the adapter. Fails in no way; who is unknown is refused by the
  // operations.
  explicit FlashUpdate(const std::string& adapter);
  FlashUpdate(const FlashUpdate&) = delete;
  FlashUpdate& operator=(const FlashUpdate&) = delete;
  ~FlashUpdate();

 private:
  const std::string m_adapter;
  const bool m_hasBegun;
};

// Sets what the port boots from; in a FlashUpdate, when that is made. Returns false when the port
// is unknown or could not be changed; `errorText` says why: the drivers of the kernel's adapters,
// for one, offer no such thing.
ORVEX_MIDAPI_API bool setBootType(const std::string& adapter, BootType bootType,
                                  std::string& errorText);
ORVEX_MIDAPI_API bool setBootType(const std::string& adapter, BootType bootType);

// Checks an image file against an adapter and prepares what is to be written.
//
// `file` and `fileSize` are the image file. `image` is a buffer of `imageSize` bytes (the file's
// size is always enough) and does not overlap the file; on return `imageSize` is the number of
// bytes filled, 0 where nothing was. `types` are the image types to install, in any order; none
// means all that the file holds, and FirmwareType::None among them selects nothing.
//
// The checks, in order, each with the status that its failure gives:
//   1 InvalidImage   the bytes are no valid chain of PCI Expansion ROM images
//   2 NotForAdapter  no image is for the adapter's vendor and device
//   5 NotUpdatable   the adapter's firmware cannot be replaced
//   4 TypesDiffer    types were requested and the file lacks one of them or nothing is selected;
//                    none were and the file's types are not those that the adapter holds; the
//                    types of images for other devices do not count on either side
//   3 Downgrade      an image that would be installed is older than the installed one of its type
//   6 InternalFault  the adapter is unknown or unreadable, the buffer is too small, or an image
//                    that becomes the last one has no byte that may take up the change of its sum
// The image is filled for Ok, Downgrade and TypesDiffer, since the caller may accept those. It
// holds the selected images in file order with last-image bits and byte sums put right: exactly
// what the flash will hold. An adapter of the kernel's that does not answer just now is waited for,
// 5 s at the most: it may be starting anew after an update.
[[nodiscard]] ORVEX_MIDAPI_API PrepareStatus prepareFlashImage(
    const std::string& adapter, const std::uint8_t* file, std::uint32_t fileSize,
    std::uint8_t* image, std::uint32_t& imageSize, const std::vector<utils::FirmwareType>& types);

// Returns why prepareFlashImage refuses what it is asked, in one line for a person: which device
// the file is for, which version is older than which. Empty where it does not, and where its status
// says all there is to say. Prepares nothing, and waits for nobody.
[[nodiscard]] ORVEX_MIDAPI_API std::string explainFlashImage(
    const std::string& adapter, const std::uint8_t* file, std::uint32_t fileSize,
    const std::vector<utils::FirmwareType>& types);

// Compares a firmware file as a whole with what the adapter holds, by the checks of
// prepareFlashImage. Unlike that it prepares nothing, and leaves the adapter's progress alone.
[[nodiscard]] ORVEX_MIDAPI_API ImageComparison compareFlashImage(const std::string& adapter,
                                                                 const std::uint8_t* file,
                                                                 std::uint32_t fileSize);

// Returns a digest of all of the adapter that decides what compareFlashImage answers: as long as it
// stays the same, each file compares as before. 0 where the adapter is unknown or unreadable.
[[nodiscard]] ORVEX_MIDAPI_API std::uint64_t digestAdapter(const std::string& adapter);

// Replaces the adapter's flash by `image`, at the adapter's write rate; returns when it is done. In
// a FlashUpdate the image is written beside the old one, which it replaces when the update is made.
//
// Returns true on success; `errorCode` and `errorText` are filled in every case (0 and an empty
// text on success). What was written is read back and compared before success is reported. The
// flash holds the old content or the new one at every moment, also across a crash, never a mixture.
[[nodiscard]] ORVEX_MIDAPI_API bool writeFlashImage(const std::string& adapter,
                                                    const std::uint8_t* image,
                                                    std::uint32_t imageSize,
                                                    std::uint32_t& errorCode,
                                                    std::string& errorText);

// Returns the progress of the adapter's running or last write in this process, in percent; it never
// falls during a write and reads 100 only after its success. 0 when there was no write, and from
// the preparation of the next one on.
[[nodiscard]] ORVEX_MIDAPI_API std::uint32_t getFlashImageUpdateProgress(
    const std::string& adapter);

// Returns what a person should know of the adapter's last write in this process, which succeeded,
// in one line: that nothing tells whether the flash holds what was written. Empty where all is
// well.
[[nodiscard]] ORVEX_MIDAPI_API std::string getFlashImageUpdateRemark(const std::string& adapter);

// Records in the adapter which image types are now installed: those of the list, or without a type
// in it those that its flash holds. In a FlashUpdate it makes the update, and when it fails nothing
// has changed. Returns and fills as writeFlashImage.
[[nodiscard]] ORVEX_MIDAPI_API bool updateCapabilityWord(const std::string& adapter,
                                                         std::vector<utils::FirmwareType> types,
                                                         std::uint32_t& errorCode,
                                                         std::string& errorText);

// Puts the firmware into force that the adapter of this address ("0000:03:00") has stored, or says
// what that takes. Returns false where that failed; `errorText` says why.
[[nodiscard]] ORVEX_MIDAPI_API bool activateFirmware(const std::string& adapter,
                                                     Activation& activation,
                                                     std::string& errorText);

}  // namespace ma

#endif  // ORVEX_MIDAPI_MIDAPI_H_
