#include "Support/HTTP2Front.h"

#include "Support/Files.h"
#include "Support/TLSServer.h"

#include <arpa/inet.h>
#include <csignal>
#include <fcntl.h>
#include <set>
#include <sstream>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tests {
namespace {

bool accepts(int port) {
    const int probe = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<in_port_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const bool isOpen = connect(probe, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    close(probe);
    return isOpen;
}

} // namespace

HTTP2Front::HTTP2Front(const Identity& identity, int backendPort) {
    const auto [listener, freePort] = listenOnLoopback();
    close(listener);
    port = freePort;
    std::vector<std::string> arguments{"nghttpx",
                                       "--conf=/dev/null",
                                       "--single-process",
                                       "--no-ocsp",
                                       "--workers=1",
                                       "--frontend=127.0.0.1," + std::to_string(port),
                                       "--backend=127.0.0.1," + std::to_string(backendPort),
                                       "--accesslog-file=" + (folder / "access").string(),
                                       "--accesslog-format=$alpn $remote_port",
                                       folder.write("key.pem", identity.keyPEM()).string(),
                                       folder.write("certificate.pem", identity.certificatePEM()).string()};
    std::vector<char*> words;
    for (std::string& argument : arguments)
        words.push_back(argument.data());
    words.push_back(nullptr);

    const int errors = open(folder.write("errors", "").c_str(), O_WRONLY | O_CLOEXEC);
    process = fork();
    if (process == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        dup2(errors, STDERR_FILENO);
        execvp(words[0], words.data());
        _exit(127);
    }
    close(errors);
    for (int attempt = 0; attempt < 500 && !accepts(port); ++attempt) {
        if (waitpid(process, nullptr, WNOHANG) == process)
            throw std::runtime_error("nghttpx (package nghttp2-proxy) does not run: "
                                     + bytesOf(folder / "errors"));
        usleep(10'000);
    }
}

HTTP2Front::~HTTP2Front() {
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
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
