#pragma once

#include "Support/Certificates.h"
#include "Support/TemporaryFolder.h"

#include <sys/types.h>

namespace tests {

// A proxy that speaks HTTP/2 over TLS to its clients and plain HTTP/1.1 to the server at `backendPort`.
class HTTP2Front {
public:
    HTTP2Front(const Identity& identity, int backendPort);
    ~HTTP2Front();
    HTTP2Front(const HTTP2Front&) = delete;
    HTTP2Front& operator=(const HTTP2Front&) = delete;

    int port = 0;

    // How many connections the requests answered so far came on. All must have been HTTP/2.
    int connectionsUsed() const;

private:
    TemporaryFolder folder;
    pid_t process = 0;
};

} // namespace tests
