#include "Utils/Lasting.h"

namespace utils {

void destroyAtUnload(void (* /*destroy*/)()) noexcept {}

}  // namespace utils
