#pragma once

#include "Platform/SystemFacts.h"

#include <filesystem>

// What the machine says of itself. Any thread.
namespace platform::desktop {

SystemFacts machineFacts();

// The model that the maker has written into the machine, below that folder; nothing if he has left what was
// there before.
std::optional<std::string> hardwareModel(const std::filesystem::path& folder);

} // namespace platform::desktop
