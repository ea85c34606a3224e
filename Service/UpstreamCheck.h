#pragma once

#include "Service/Engine/TranslationEngine.h"

#include <ostream>

namespace lumarin::service {

// Has the engine translate one short sentence, and writes what it gave and how fast, or what is wrong and how
// to mend it. Whether the translation came. Waits up to `patience`.
bool checkUpstream(const TranslationEngine& engine, std::chrono::seconds patience, std::ostream& out);

} // namespace lumarin::service
