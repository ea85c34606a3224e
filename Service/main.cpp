#include "Service/Gloss/Gloss.h"
#include "Service/Options.h"
#include "Service/Server.h"
#include "Service/Upstream/Upstream.h"

#include <csignal>
#include <exception>
#include <iostream>
#include <pthread.h>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace lumarin::service;

constexpr timespec timeToEnd{.tv_sec = 10, .tv_nsec = 0};

// Keeps the signals of an orderly end for whoever waits for them, from now on and in threads yet to start.
sigset_t blockEndSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

// Ends the server on the signals while it runs: gives the answers under way some time, or none when asked
// again.
class SignalWatch {
public:
    SignalWatch(Server& server, const Log& log, const sigset_t& signals) {
        thread = std::thread([&server, &log, signals] {
            int received = 0;
            sigwait(&signals, &received);
            log.write("stopping");
            server.stop();
            sigtimedwait(&signals, nullptr, &timeToEnd);
            server.abandon();
        });
    }
    SignalWatch(const SignalWatch&) = delete;
    SignalWatch& operator=(const SignalWatch&) = delete;
    ~SignalWatch() {
        ::kill(::getpid(), SIGTERM); // Ends the wait for a second one.
        thread.join();
    }

private:
    std::thread thread;
};

// Each translation takes up to three descriptors; the usual limit is there for programs that use select().
void raiseDescriptorLimit() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        limit.rlim_cur = limit.rlim_max;
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
}

std::unique_ptr<TranslationEngine> makeEngine(const Options& options) {
    if (options.upstream.empty())
        return std::make_unique<Gloss>();
    std::shared_ptr<const platform::TrustedCertificates> authorities;
    if (!options.upstreamAuthority.empty())
        authorities = std::make_shared<platform::TrustedCertificates>(options.upstreamAuthority);
    return std::make_unique<Upstream>(UpstreamConfiguration{.url = options.upstream,
                                                            .model = options.model,
                                                            .key = options.key,
                                                            .parameters = options.parameters,
                                                            .silence = options.timeout,
                                                            .authorities = authorities});
}

std::unique_ptr<Server> makeServer(const TranslationEngine& engine, const Options& options, const Log& log) {
    try {
        return std::make_unique<Server>(engine, options, log);
    } catch (const std::runtime_error& error) {
        throw OptionError(error.what()); // A certificate that cannot be used.
    }
}

std::string address(const std::string& host, std::uint16_t port) {
    const bool isIpv6 = host.find(':') != std::string::npos;
    return "https://" + (isIpv6 ? "[" + host + "]" : host) + ":" + std::to_string(port);
}

void serve(const Options& options) {
    const sigset_t signals = blockEndSignals();
    raiseDescriptorLimit();
    Log log([](const std::string& line) { std::cerr << line + "\n"; });
    const auto engine = makeEngine(options);
    const auto server = makeServer(*engine, options, log);
    const std::uint16_t port = server->bind(options.host, options.port);
    const SignalWatch watch(*server, log, signals);
    log.write("started", {{"listen", address(options.host, port)},
                          {"upstream", options.upstream.empty() ? "built-in gloss" : options.upstream}});
    std::cout << "Listening on " << address(options.host, port) << std::endl;
    server->run();
    log.write("stopped");
}

} // namespace

int main(int count, char** arguments) {
    constexpr int usageError = 2;
    try {
        const Options options = parseOptions(count, arguments);
        if (options.help) {
            std::cout << usage();
            return EXIT_SUCCESS;
        }
        serve(options);
        return EXIT_SUCCESS;
    } catch (const OptionError& error) {
        std::cerr << "lumarin-service: " << error.what() << "\n";
        return usageError;
    } catch (const std::exception& error) {
        std::cerr << "lumarin-service: " << error.what() << "\n";
        return EXIT_FAILURE;
    }
}
