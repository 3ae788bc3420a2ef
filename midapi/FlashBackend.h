// What stands behind the flash library: one kind of adapter hardware, or its stand-in.
//
// The library checks and prepares images and keeps the progress of writes; a back end knows which
// adapters there are, reads and replaces their flash and keeps their settings. Any thread may call;
// writes to one adapter never overlap. Every failure is thrown as FlashFault.

#ifndef ORVEX_MIDAPI_FLASHBACKEND_H_
#define ORVEX_MIDAPI_FLASHBACKEND_H_

#include <cstdint>
#include <exception>
#include <string>

#include "Utils/FirmwareTypes.h"
#include "midapi/AdapterId.h"
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

// What decides whether an image is for an adapter.
struct AdapterFacts {
  std::uint16_t vendor = 0;
  std::uint16_t device = 0;
  bool isUpdatable = false;
};

class FlashBackend {
 public:
  FlashBackend() = default;
  FlashBackend(const FlashBackend&) = delete;
  FlashBackend& operator=(const FlashBackend&) = delete;
  virtual ~FlashBackend() = default;

  // Returns the identifiers of all ports, ordered by PCI address; leaves out what cannot be read.
  [[nodiscard]] virtual utils::StringArray enumerateAdapters() = 0;

  [[nodiscard]] virtual AdapterFacts facts(const PortId& port) = 0;

  // Returns the content of the flash; empty when it was never written.
  [[nodiscard]] virtual FileBytes readFlash(const PortId& port) = 0;

  // Begins an update of an adapter: its changes from now on, by this process, are made together by
  // setCapabilityWord. Returns false, and does nothing, when one has begun already.
  [[nodiscard]] virtual bool beginUpdate(const AdapterAddress& adapter) = 0;

  // Ends it. What was not made is taken back.
  virtual void endUpdate(const AdapterAddress& adapter) noexcept = 0;

  // Returns what the flash will hold when the update is made; without one, what it holds.
  [[nodiscard]] virtual FileBytes readFlashToBe(const PortId& port) = 0;

  virtual void setBootType(const PortId& port, BootType bootType) = 0;

  // Replaces the flash and reports to `progress`, which the caller has started; returns when the
  // new content was read back and compared.
  virtual void writeFlash(const PortId& port, ConstBytes image, WriteProgress& progress) = 0;

  // Stores the capability word: bit n stands for image type number n.
  virtual void setCapabilityWord(const PortId& port, std::uint32_t word) = 0;
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_FLASHBACKEND_H_
