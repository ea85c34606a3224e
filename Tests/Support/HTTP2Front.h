#pragma once

#include "Support/Identity.h"
#include "Support/TemporaryFolder.h"
#include "Support/TestProcess.h"

namespace tests {

// A proxy (nghttpx) that speaks HTTP/2 over TLS to its clients and plain HTTP/1.1 to the server at
// `backendPort`.
class HTTP2Front {
public:
    HTTP2Front(const Identity& identity, int backendPort);

    const int port;

    // How many connections the requests answered so far came on. All must have been HTTP/2.
    int connectionsUsed() const;

private:
    TemporaryFolder folder;
    TestProcess process;
};

} // namespace tests
