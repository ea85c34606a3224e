#include "Service/HTTPSServer.h"

#include "Service/TLSStream.h"

#include <cstdint>
#include <stdexcept>
#include <sys/eventfd.h>

namespace lumarin::service {
namespace {

using namespace std::chrono_literals;

// A connection keeps its thread while it is open, and clients keep theirs open for the next request.
constexpr std::size_t threads = 64;
constexpr std::size_t requestsPerConnection = 10'000;
constexpr std::chrono::seconds idleTime = 10min;
constexpr std::size_t headerBytes = std::size_t{32} * 1024;
constexpr std::chrono::seconds headerTime = 10s;
// More than any body that is accepted: what is too long is refused with a sentence, not cut off.
constexpr std::size_t bodyBytes = std::size_t{16} * 1024 * 1024;
constexpr std::chrono::seconds bodyTime = 30s;
constexpr int backlog = 128;

TLSContext makeContext(const CertificateFiles& files) {
    TLSContext context(SSL_CTX_new(TLS_server_method()));
    if (!context || SSL_CTX_set_min_proto_version(context.get(), TLS1_2_VERSION) != 1
        || SSL_CTX_use_certificate_chain_file(context.get(), files.certificate.c_str()) != 1
        || SSL_CTX_use_PrivateKey_file(context.get(), files.key.c_str(), SSL_FILETYPE_PEM) != 1)
        throw std::runtime_error("The certificate in " + files.certificate.string() + " cannot be used.");
    return context;
}

// The library's pool, counting the connections that have no thread yet.
class CountingPool final : public httplib::ThreadPool {
public:
    explicit CountingPool(std::atomic<int>& count) : ThreadPool(threads), waiting(count) {}

    void enqueue(std::function<void()> task) override {
        ++waiting;
        ThreadPool::enqueue([this, task = std::move(task)] {
            --waiting;
            task();
        });
    }

private:
    std::atomic<int>& waiting;
};

} // namespace

HTTPSServer::HTTPSServer(const CertificateFiles& files)
    : context(makeContext(files)), stopSignal(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    new_task_queue = [this] { return new CountingPool(waitingConnections); };
    set_tcp_nodelay(true);
    set_keep_alive_timeout(idleTime.count());
    set_keep_alive_max_count(requestsPerConnection);
    // The library's own choice would let two services share a port unnoticed.
    set_socket_options([](socket_t socket) {
        const int yes = 1;
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
}

HTTPSServer::~HTTPSServer() = default;

void HTTPSServer::stopListening() {
    // The library's stop() is lost on a server that has not begun to accept; this is not.
    ::eventfd_write(stopSignal.number(), 1);
    ::shutdown(svr_sock_, SHUT_RDWR);
}

void HTTPSServer::widenBacklog() {
    ::listen(svr_sock_, backlog);
}

std::chrono::steady_clock::time_point& HTTPSServer::requestStart() {
    static thread_local std::chrono::steady_clock::time_point start;
    return start;
}

bool HTTPSServer::process_and_close_socket(socket_t socket) {
    TLSStream stream(*context, socket, stopSignal.number());
    if (!stream.accept())
        return false;
    const auto unwanted = [this] { return waitingConnections > 0; };
    for (std::size_t left = requestsPerConnection; left > 0; --left) {
        if (!stream.awaitRequest(idleTime, unwanted))
            return true;
        requestStart() = std::chrono::steady_clock::now();
        stream.allow(headerBytes, headerTime);
        bool understood = false;
        bool closed = false;
        const bool served = process_request(stream, left == 1, closed, [&](httplib::Request& request) {
            understood = true;
            // The library would take a form apart; whatever it is called, the body is to be JSON.
            request.headers.erase("Content-Type");
            stream.allow(bodyBytes, bodyTime);
        });
        if (!served || !understood || stream.isExhausted()) {
            stream.drain();
            return false;
        }
        if (closed)
            return true;
    }
    return true;
}

} // namespace lumarin::service
