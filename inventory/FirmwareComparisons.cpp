#include "inventory/FirmwareComparisons.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "platform/Mutex.h"

namespace inventory {
namespace {

// What a file is to an adapter of this digest.
struct Comparison {
  std::uint64_t digest = 0;
  ma::ImageComparison result = ma::ImageComparison::Unknown;
};

// What is known of a file.
struct Known {
  std::optional<platform::FileIdentity> identity;  // nothing: the next look reads it again
  std::map<std::string, Comparison> comparisons;   // by the adapter's identity
};

// Compares a file with an adapter that may be changed meanwhile.
Comparison compare(const Adapter& adapter, std::uint64_t digest,
                   const std::vector<std::uint8_t>& content) {
  constexpr int kTries = 3;  // a flash takes longer to be written than to be compared
  for (int i = 0; i < kTries; ++i) {
    const std::uint64_t before = digest;
    const ma::ImageComparison result = ma::compareFlashImage(
        adapter.firstPort, content.data(), static_cast<std::uint32_t>(content.size()));
    digest = ma::digestAdapter(adapter.firstPort);
    if (digest == before) {
      return {digest, result};
    }
  }
  return {};
}

bool isOf(const Known& known, const FirmwareFile& file) {
  return !known.identity || !file.identity || known.identity == file.identity;
}

ma::ImageComparison findResult(const Known& known, const AdapterState& state) {
  const auto found = known.comparisons.find(state.adapter.identity);
  if (found == known.comparisons.end()) {
    return ma::ImageComparison::Unknown;
  }
  const Comparison& comparison = found->second;
  return comparison.digest == state.digest ? comparison.result : ma::ImageComparison::Unknown;
}

}  // namespace

// Shared with the thread of a look, which may outlive its request.
class FirmwareComparisons::Catalogue {
 public:
  explicit Catalogue(ReadFile readFile) : m_readFile(std::move(readFile)) {}

  void look(const std::vector<FirmwareFilePtr>& files) {
    const platform::Lock lookLock(m_lookMutex);
    const std::vector<AdapterState> adapters = digestAdapters(findAdapters());
    forgetOthers(files);
    for (const FirmwareFilePtr& file : files) {
      if (m_isClosed) {
        return;
      }
      if (!isKnown(*file, adapters)) {
        learn(*file, adapters);
      }
    }
  }

  [[nodiscard]] std::vector<ma::ImageComparison> find(const FirmwareFile& file,
                                                      const std::vector<AdapterState>& adapters) {
    std::vector<ma::ImageComparison> results(adapters.size(), ma::ImageComparison::Unknown);
    const platform::Lock lock(m_mutex);
    const auto known = m_known.find(file.path);
    if (known != m_known.end() && isOf(known->second, file)) {
      std::transform(
          adapters.begin(), adapters.end(), results.begin(),
          [&known](const AdapterState& state) { return findResult(known->second, state); });
    }
    return results;
  }

  [[nodiscard]] std::size_t countUnknown(const std::vector<FirmwareFilePtr>& files) {
    std::size_t count = 0;
    const platform::Lock lock(m_mutex);
    for (const FirmwareFilePtr& file : files) {
      const auto known = m_known.find(file->path);
      count += known == m_known.end() || !isOf(known->second, *file) ? 1 : 0;
    }
    return count;
  }

  void forgetOthers(const std::vector<FirmwareFilePtr>& files) {
    std::set<std::string> paths;
    for (const FirmwareFilePtr& file : files) {
      paths.insert(file->path);
    }
    const platform::Lock lock(m_mutex);
    std::erase_if(m_known, [&paths](const auto& known) { return !paths.contains(known.first); });
  }

  // No look is needed any more.
  void close() { m_isClosed = true; }

 private:
  // Returns whether a look would find what is known.
  [[nodiscard]] bool isKnown(const FirmwareFile& file, const std::vector<AdapterState>& adapters) {
    const platform::Lock lock(m_mutex);
    const auto known = m_known.find(file.path);
    if (known == m_known.end() || !known->second.identity ||
        known->second.identity != file.identity) {
      return false;
    }
    const std::map<std::string, Comparison>& comparisons = known->second.comparisons;
    return std::all_of(adapters.begin(), adapters.end(), [&](const AdapterState& state) {
      const auto comparison = comparisons.find(state.adapter.identity);
      return comparison != comparisons.end() && comparison->second.digest == state.digest;
    });
  }

  void learn(const FirmwareFile& file, const std::vector<AdapterState>& adapters) {
    Known made;
    if (!adapters.empty()) {
      const auto content = m_readFile(file.path);
      for (const AdapterState& state : adapters) {
        if (content) {
          made.comparisons[state.adapter.identity] = compare(state.adapter, state.digest, *content);
        }
      }
      if (content && file.identity && identifyFirmwareFile(file.path) == file.identity) {
        made.identity = file.identity;
      }
    }
    const platform::Lock lock(m_mutex);
    m_known[file.path] = std::move(made);
  }

  const ReadFile m_readFile;
  std::atomic<bool> m_isClosed{false};
  platform::Mutex m_lookMutex;  // held while files are read: one at a time
  platform::Mutex m_mutex;
  std::map<std::string, Known> m_known ORVEX_GUARDED_BY(m_mutex);  // by path
};

std::vector<AdapterState> digestAdapters(const std::vector<Adapter>& adapters) {
  std::vector<AdapterState> states;
  states.reserve(adapters.size());
  for (const Adapter& adapter : adapters) {
    states.push_back({adapter, ma::digestAdapter(adapter.firstPort)});
  }
  return states;
}

FirmwareComparisons::FirmwareComparisons(os::FileCalls::Patience patience, ReadFile readFile)
    : m_looks(patience), m_catalogue(std::make_shared<Catalogue>(std::move(readFile))) {}

FirmwareComparisons::~FirmwareComparisons() {
  m_catalogue->close();
}

void FirmwareComparisons::look(std::vector<FirmwareFilePtr> files) {
  if (files.empty()) {  // no adapter is asked for nothing
    m_catalogue->forgetOthers(files);
    m_uncompared = 0;
    return;
  }
  const auto shared = std::make_shared<const std::vector<FirmwareFilePtr>>(std::move(files));
  const os::FileAnswer answer =
      m_looks.makeAt("the comparisons of firmware files",
                     [catalogue = m_catalogue, shared] { catalogue->look(*shared); });
  m_uncompared = answer == os::FileAnswer::InTime ? 0 : m_catalogue->countUnknown(*shared);
}

std::vector<ma::ImageComparison> FirmwareComparisons::find(
    const FirmwareFile& file, const std::vector<AdapterState>& adapters) {
  return m_catalogue->find(file, adapters);
}

}  // namespace inventory
