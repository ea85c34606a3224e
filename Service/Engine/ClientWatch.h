#pragma once

#include "Service/Engine/TranslationEngine.h"
#include "Service/Support/Handles.h"

#include <cstdint>

namespace lumarin::service {

// Tells whether anybody still waits for an answer, without reading from the connection.
class ClientWatch {
public:
    explicit ClientWatch(const Waiting& waiting);

    // Readable once the client has closed the connection or the service ends for good.
    int descriptor() const { return events.number(); }
    bool hasGone() const;

private:
    void watch(int descriptor, std::uint32_t what) const;

    Descriptor events;
};

} // namespace lumarin::service
