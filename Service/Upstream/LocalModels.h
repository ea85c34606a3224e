#pragma once

#include "Service/Support/Async.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace lumarin::service {

// A model that a server on this computer offers.
struct LocalModel {
    std::string url; // The server's base address.
    std::string name;

    bool operator==(const LocalModel&) const = default;
};

// Where local model servers listen unless told otherwise, in the order in which they are preferred.
std::span<const std::uint16_t> usualPorts();

// Asks the ports of the loopback for their lists of models, all at once and within half a second, and sends
// them nothing else. The first port's that has a model to chat with; `wanted` of them, unless that is empty.
// `ports` outlive the search. Throws nothing.
asio::awaitable<std::optional<LocalModel>>
findLocalModel(std::string wanted, std::span<const std::uint16_t> ports = usualPorts());

// The first model to chat with in a server's list of models, or the one that is wanted; empty if there is
// none.
std::string chatModel(std::string_view list, std::string_view wanted);

} // namespace lumarin::service
