#include "Os/FileAhead.h"

namespace os {

struct FileAhead::Findings {};

FileAhead::FileAhead(const std::string& /*path*/, std::uint32_t /*most*/) {}

FileAhead::~FileAhead() = default;

std::span<const std::uint8_t> FileAhead::content() const {
  return {};
}

bool FileAhead::isTaken() const {
  return false;
}

FileAhead::InForce::InForce(FileAhead* /*ahead*/) : m_before(nullptr) {}

FileAhead::InForce::~InForce() = default;

}  // namespace os
