#include "core/PropertyName.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <utility>

namespace core {
namespace {

// A chained hash table that only grows, without a lock: an entry is complete when it can be seen,
// and never changes or goes.
class NameTable {
 public:
  constexpr NameTable() = default;

  // Returns null when the name is not there.
  [[nodiscard]] const std::string* find(std::string_view name) const {
    return find(bucketOf(name).load(std::memory_order_acquire), name);
  }

  // Returns the name's entry, made where there is none; null when the table is full.
  [[nodiscard]] const std::string* enter(std::string_view name) {
    std::atomic<Entry*>& bucket = bucketOf(name);
    Entry* const first = bucket.load(std::memory_order_acquire);
    if (const std::string* found = find(first, name)) {
      return found;
    }
    if (m_size.load(std::memory_order_relaxed) >= kMaxNames) {
      return nullptr;
    }
    auto entry = std::make_unique<Entry>(Entry{first, std::string(name)});
    // New entries come first: where there is none, nobody has entered the name meanwhile.
    while (!bucket.compare_exchange_weak(entry->next, entry.get(), std::memory_order_acq_rel,
                                         std::memory_order_acquire)) {
      if (const std::string* found = find(entry->next, name)) {
        return found;
      }
    }
    m_size.fetch_add(1, std::memory_order_relaxed);
    return &entry.release()->name;
  }

 private:
  struct Entry {
    Entry* next;
    const std::string name;
  };

  static constexpr std::size_t kBuckets = 512;
  // Far above what all classes have: the bound is for an owner that names properties at random.
  static constexpr std::size_t kMaxNames = 8192;

  [[nodiscard]] static const std::string* find(const Entry* entry, std::string_view name) {
    for (; entry != nullptr; entry = entry->next) {
      if (entry->name == name) {
        return &entry->name;
      }
    }
    return nullptr;
  }

  // By the length and characters that tell the names of a schema apart; not by all of them, since
  // this is most of what the construction of a property costs.
  [[nodiscard]] static std::size_t hash(std::string_view name) {
    if (name.empty()) {
      return 0;
    }
    std::size_t hash = name.size();
    for (const std::size_t at :
         {std::size_t{0}, name.size() / 3, name.size() / 2, name.size() * 3 / 4, name.size() - 1}) {
      hash = hash * 31 + static_cast<unsigned char>(name[at]);
    }
    return hash;
  }

  [[nodiscard]] std::atomic<Entry*>& bucketOf(std::string_view name) {
    return m_buckets[hash(name) % kBuckets];
  }
  [[nodiscard]] const std::atomic<Entry*>& bucketOf(std::string_view name) const {
    return m_buckets[hash(name) % kBuckets];
  }

  std::array<std::atomic<Entry*>, kBuckets> m_buckets{};
  std::atomic<std::size_t> m_size{0};
};

// Of constant initialisation, since static objects have properties, and never destroyed.
union StaticTable {
  constexpr StaticTable() : table() {}
  StaticTable(const StaticTable&) = delete;
  StaticTable& operator=(const StaticTable&) = delete;
  ~StaticTable() {}  // NOLINT(modernize-use-equals-default): it would be deleted

  NameTable table;
};
constinit StaticTable s_names;

}  // namespace

PropertyName::PropertyName(std::string_view name, NameSource source)
    : m_text(source == NameSource::Class ? s_names.table.enter(name) : s_names.table.find(name)),
      m_isOwned(m_text == nullptr) {
  if (m_isOwned) {
    m_text = new std::string(name);
  }
}

}  // namespace core
