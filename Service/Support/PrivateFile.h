#pragma once

#include <filesystem>
#include <string>

namespace lumarin::service {

// How a file that holds a secret can be read by others, in words that go on from its name, with what to do
// about it; empty if it is private. One that somebody else has handed in may be shared with a group, by which
// the service reads it.
std::string exposure(const std::filesystem::path& file);

} // namespace lumarin::service
