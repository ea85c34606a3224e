#pragma once

#include "Service/Upstream/UpstreamConnection.h"

#include <memory>
#include <vector>

namespace lumarin::service {

// Connections to the model server that nobody uses at the moment. For one thread.
class UpstreamConnections {
public:
    // The one used last, which is the most likely to be still open, or a new one. Throws what making it
    // throws.
    std::unique_ptr<UpstreamConnection> take();
    void giveBack(std::unique_ptr<UpstreamConnection> connection);

private:
    using Clock = UpstreamConnection::Clock;

    struct Idle {
        std::unique_ptr<UpstreamConnection> connection;
        Clock::time_point since;
    };

    std::vector<Idle> idle;
};

} // namespace lumarin::service
