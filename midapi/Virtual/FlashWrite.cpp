#include "midapi/Virtual/FlashWrite.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstring>

#include "midapi/Hex.h"
#include "platform/Texts.h"

namespace ma {
namespace {

constexpr std::uint64_t kMaxBlock = 64 * 1024;
constexpr std::uint64_t kStepsPerSecond = 20;
constexpr std::chrono::milliseconds kHangPoll{50};

std::size_t blockSizeAt(std::uint64_t rate) {
  return static_cast<std::size_t>(
      rate == 0 ? kMaxBlock : std::clamp<std::uint64_t>(rate / kStepsPerSecond, 1, kMaxBlock));
}

}  // namespace

FlashWrite::FlashWrite(FileSystem& files, const AdapterFolder& folder,
                       const AdapterDescription& description, ConstBytes image,
                       WriteProgress& progress, platform::Clock& clock)
    : m_files(files),
      m_folder(folder),
      m_description(description),
      m_image(image),
      m_progress(progress),
      m_clock(clock) {}

void FlashWrite::run(const std::filesystem::path& path) {
  try {
    const auto file = m_files.create(path);
    writeTo(*file);
    file->sync();
    file->close();
    compare(path);
  } catch (const FileFault& fault) {
    throw FlashFault(FlashError::InputOutput, fault.what());
  }
}

std::vector<FlashWrite::Stop> FlashWrite::stops() const {
  std::vector<Stop> stops;
  if (m_description.hangAtPercent) {
    stops.push_back({offsetAt(*m_description.hangAtPercent), true});
  }
  if (m_description.writeFault) {
    stops.push_back({offsetAt(m_description.writeFault->atPercent), false});
  }
  std::stable_sort(stops.begin(), stops.end(),
                   [](const Stop& a, const Stop& b) { return a.offset < b.offset; });
  return stops;
}

// The first offset at which the progress shows the percentage.
std::size_t FlashWrite::offsetAt(std::uint32_t percent) const {
  const std::uint64_t parts = WriteProgress::kComplete;
  return static_cast<std::size_t>((std::uint64_t{m_image.size()} * percent + parts - 1) / parts);
}

void FlashWrite::writeTo(WritableFile& file) {
  m_start = m_clock.now();
  for (const Stop& stop : stops()) {
    writeUpTo(file, stop.offset);
    if (!stop.isHang) {
      throw FlashFault(m_description.writeFault->fault.code, m_description.writeFault->fault.text);
    }
    hang();
  }
  writeUpTo(file, m_image.size());
}

void FlashWrite::writeUpTo(WritableFile& file, std::size_t end) {
  const std::size_t blockSize = blockSizeAt(m_description.writeRate);
  while (m_written < end) {
    const std::size_t count = std::min(blockSize, end - m_written);
    file.append(m_image.subspan(m_written, count));
    m_written += count;
    waitForTurn();
    m_progress.advance(m_written, m_image.size());
  }
}

// Waits until a device of the adapter's write rate would have taken what is written.
void FlashWrite::waitForTurn() {
  if (m_description.writeRate != 0) {
    const std::chrono::duration<double> due(static_cast<double>(m_written) /
                                            static_cast<double>(m_description.writeRate));
    m_clock.sleepUntil(m_start + std::chrono::duration_cast<platform::Clock::Duration>(due));
  }
}

// Waits until the description asks for no hang any more. One that cannot be read is being edited.
void FlashWrite::hang() {
  const platform::Clock::TimePoint begin = m_clock.now();
  const auto isHeld = [this] {
    try {
      return m_folder.description().hangAtPercent.has_value();
    } catch (const FlashFault&) {
      return m_folder.hasDescription();
    }
  };
  while (isHeld()) {
    m_clock.sleepFor(kHangPoll);
  }
  m_start += m_clock.now() - begin;
}

void FlashWrite::compare(const std::filesystem::path& written) {
  const FileBytes content = m_files.read(written, m_image.size());
  const ConstBytes found = content.view();
  const auto [different, expected] =
      std::mismatch(found.begin(), found.end(), m_image.begin(), m_image.end());
  if (different != found.end() || expected != m_image.end()) {
    throw FlashFault(FlashError::CompareMismatch,
                     platform::toShownText(written) + " differs from the image at 0x" +
                         hexText(static_cast<std::uint64_t>(different - found.begin()), 2));
  }
}

}  // namespace ma
