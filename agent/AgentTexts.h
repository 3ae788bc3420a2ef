// What there is to say of the update agent's classes. Constant data.

#ifndef ORVEX_AGENT_AGENTTEXTS_H_
#define ORVEX_AGENT_AGENTTEXTS_H_

#include <span>

#include "core/ClassText.h"

namespace agent {

[[nodiscard]] std::span<const core::ClassText> getAgentTexts();

}  // namespace agent

#endif  // ORVEX_AGENT_AGENTTEXTS_H_
