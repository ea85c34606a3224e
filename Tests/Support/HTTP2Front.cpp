#include "Support/HTTP2Front.h"

#include "Support/Files.h"
#include "Support/TLSServer.h"

#include <set>
#include <sstream>

namespace tests {

HTTP2Front::HTTP2Front(const Identity& identity, int backendPort)
    : port(freePort()),
      process({"nghttpx", "--conf=/dev/null", "--single-process", "--no-ocsp", "--workers=1",
               "--frontend=127.0.0.1," + std::to_string(port),
               "--backend=127.0.0.1," + std::to_string(backendPort),
               "--accesslog-file=" + (folder / "access").string(), "--accesslog-format=$alpn $remote_port",
               folder.write("key.pem", identity.keyPEM()),
               folder.write("certificate.pem", identity.certificatePEM())},
              {}) {
    process.awaitLine("Listening on");
}

int HTTP2Front::connectionsUsed() const {
    std::set<std::string> ports;
    std::istringstream log(bytesOf(folder / "access"));
    for (std::string protocol, clientPort; log >> protocol >> clientPort;) {
        if (protocol != "h2")
            throw std::runtime_error("A request came by " + protocol);
        ports.insert(clientPort);
    }
    return static_cast<int>(ports.size());
}

} // namespace tests
