#include "midapi/AdapterFault.h"

#include <utility>

namespace ma {

AdapterFault::AdapterFault(std::string text) : m_text(std::move(text)) {}

AdapterFault::~AdapterFault() = default;

}  // namespace ma
