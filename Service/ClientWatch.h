#pragma once

#include "Service/Handles.h"
#include "Service/Signals.h"

namespace lumarin::service {

// Tells whether anybody still waits for an answer, without reading from the connection.
class ClientWatch {
public:
    ClientWatch(int socket, const Signal& abandon);

    // Readable once the client has closed the connection or `abandon` has been raised.
    int descriptor() const { return events.number(); }

private:
    Descriptor events;
};

} // namespace lumarin::service
