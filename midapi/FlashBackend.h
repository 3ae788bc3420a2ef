// What stands behind the flash library: one kind of adapter hardware, or its stand-in.
//
// The library knows who asks and keeps the progress of writes; a back end knows which adapters
// there are, what they hold and what may be put on them, and puts it there. A back end of another
// kind of adapter derives from this class, or from ChainFlashBackend where a flash is a chain of
// option ROMs that is written as a whole; MidApi.cpp has those that are used.
//
// Any thread may call; writes to one adapter never overlap. Every failure is thrown as FlashFault.
// Nothing but awaitAnswer and the operations of an update may wait for an adapter: one that is
// being written is answered for at once, by what was last known of it.

#ifndef ORVEX_MIDAPI_FLASHBACKEND_H_
#define ORVEX_MIDAPI_FLASHBACKEND_H_

#include <cstdint>
#include <exception>
#include <span>
#include <string>
#include <vector>

#include "Utils/FirmwareTypes.h"
#include "midapi/AdapterId.h"
#include "midapi/AdapterListing.h"
#include "midapi/FileSystem.h"
#include "midapi/FlashTypes.h"
#include "midapi/WriteProgress.h"

namespace ma {

// The error codes of the library; an injected fault has a code of its own.
enum class FlashError : std::uint32_t {
  None = 0,
  UnknownAdapter = 201,
  InvalidDescription = 202,
  NotUpdatable = 203,
  EmptyImage = 204,
  InputOutput = 205,
  CompareMismatch = 206,
  ImageTooLarge = 207,
  WriteRefused = 208,
  Ambiguous = 209,
  NotOffered = 210,
  NotActivated = 211,
  NotCompared = 212,
  Changed = 213,
};

// A flash operation that failed: a code and a text for the person who asked for it.
class FlashFault final : public std::exception {
 public:
  // The text of `error` with `detail` behind it.
  FlashFault(FlashError error, const std::string& detail);
  // A fault with a code and a text from elsewhere.
  FlashFault(std::uint32_t code, std::string text);

  [[nodiscard]] std::uint32_t code() const { return m_code; }
  [[nodiscard]] const char* what() const noexcept override { return m_text.c_str(); }

 private:
  std::uint32_t m_code;
  std::string m_text;
};

// What a check of a firmware file against an adapter came to.
struct Preparation {
  PrepareStatus status = PrepareStatus::Ok;
  // Bytes of the caller's buffer that hold what is to be written.
  std::uint32_t filled = 0;
  // Why the status is not Ok, in one line for a person, where the status alone does not say it all.
  std::string reason{};
};

class FlashBackend {
 public:
  FlashBackend() = default;
  FlashBackend(const FlashBackend&) = delete;
  FlashBackend& operator=(const FlashBackend&) = delete;
  virtual ~FlashBackend() = default;

  // Returns what a person calls the adapter, in a sentence: "a virtual adapter (its folder)".
  [[nodiscard]] virtual std::string describe(const AdapterAddress& adapter) = 0;

  // Returns whether this back end has the adapter, be it readable or not. Asks no adapter.
  [[nodiscard]] virtual bool hasAdapter(const AdapterAddress& adapter) = 0;

  // Returns the identifiers of all ports, ordered by PCI address; leaves out what cannot be read.
  [[nodiscard]] virtual utils::StringArray enumerateAdapters() = 0;

  // Returns all that is known of all adapters, and what a person should mend. Throws AdapterFault
  // where it cannot be told which adapters there are.
  [[nodiscard]] virtual AdapterList list() = 0;

  // Returns what list() does, but no problems, and nothing that is told once: what may be asked for
  // often, by who is no person. An adapter that cannot be read is left out. Throws FlashFault where
  // it cannot be told which adapters there are.
  [[nodiscard]] virtual AdapterList outline(OutlineDepth depth) = 0;

  // Returns what became of writes whose writers died, as findAdapterProblems says.
  [[nodiscard]] virtual std::vector<std::string> interruptedWrites() = 0;

  // Returns whether the adapter's firmware may be replaced.
  [[nodiscard]] virtual bool isUpdatable(const PortId& port) = 0;

  // Returns the firmware components of known types that the adapter holds, in flash order.
  [[nodiscard]] virtual std::vector<utils::FirmwareVersionInfo> installedFirmware(
      const PortId& port) = 0;

  // Returns what the adapter's driver says of its firmware; nothing where it has none that does.
  [[nodiscard]] virtual std::vector<FirmwareVersions> firmwareVersions(const PortId& port) = 0;

  // Waits some seconds for an adapter that does not answer just now, on behalf of one who goes on
  // to write it. Whoever only asks does not wait: somebody else may be writing it for minutes.
  virtual void awaitAnswer(const AdapterAddress& adapter) = 0;

  // Checks a firmware file as prepareFlashImage says, and fills `buffer`, which has room for the
  // file, with what writeFlash is to be given.
  [[nodiscard]] virtual Preparation prepare(const PortId& port, ConstBytes file,
                                            std::span<std::uint8_t> buffer,
                                            const std::vector<utils::FirmwareType>& types) = 0;

  // Compares a firmware file as a whole with what the adapter holds.
  [[nodiscard]] virtual ImageComparison compare(const PortId& port, ConstBytes file) = 0;

  // Returns a digest of all of the adapter that decides what compare() answers.
  [[nodiscard]] virtual std::uint64_t digest(const PortId& port) = 0;

  // Begins an update of an adapter: its changes from now on, by this process, are made together by
  // recordInstalled. Returns false, and does nothing, when one has begun already.
  [[nodiscard]] virtual bool beginUpdate(const AdapterAddress& adapter) = 0;

  // Ends it. What was not made is taken back.
  virtual void endUpdate(const AdapterAddress& adapter) noexcept = 0;

  virtual void setBootType(const PortId& port, BootType bootType) = 0;

  // Replaces the firmware, or says why that may not be, and reports to `progress`, which the caller
  // has started; returns when the new content was read back and compared.
  virtual void writeFlash(const PortId& port, ConstBytes image, WriteProgress& progress) = 0;

  // Records which image types are installed from now on: those of the list, or without a type in it
  // those that the adapter then holds.
  virtual void recordInstalled(const PortId& port,
                               const std::vector<utils::FirmwareType>& types) = 0;

  // Puts stored firmware into force, where that takes no restart of the machine.
  [[nodiscard]] virtual Activation activate(const AdapterAddress& adapter) = 0;
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_FLASHBACKEND_H_
