#include "Service/Certificate.h"
#include "Service/Gloss.h"
#include "Service/Options.h"
#include "Service/Server.h"

#include <csignal>
#include <exception>
#include <iostream>
#include <pthread.h>
#include <string>
#include <thread>
#include <unistd.h>

namespace {

using namespace lumarin::service;

// Ends the server on the signals of an orderly end while it runs. They are blocked before any thread starts,
// so that they reach this one alone.
class SignalWatch {
public:
    explicit SignalWatch(Server& server) {
        sigset_t signals;
        sigemptyset(&signals);
        sigaddset(&signals, SIGTERM);
        sigaddset(&signals, SIGINT);
        pthread_sigmask(SIG_BLOCK, &signals, nullptr);
        thread = std::thread([&server, signals] {
            int received = 0;
            sigwait(&signals, &received);
            server.stop();
        });
    }
    SignalWatch(const SignalWatch&) = delete;
    SignalWatch& operator=(const SignalWatch&) = delete;
    ~SignalWatch() {
        ::kill(::getpid(), SIGTERM); // If it was not one that ended the server.
        thread.join();
    }

private:
    std::thread thread;
};

std::string address(const std::string& host, std::uint16_t port) {
    const bool isIpv6 = host.find(':') != std::string::npos;
    return "https://" + (isIpv6 ? "[" + host + "]" : host) + ":" + std::to_string(port);
}

int serve(const Options& options) {
    const Gloss engine;
    Server server(engine, ensureCertificate(options.certificate),
                  [](const std::string& line) { std::cerr << line + "\n"; });
    const std::uint16_t port = server.bind(options.host, options.port);
    const SignalWatch watch(server);
    std::cout << "Listening on " << address(options.host, port) << std::endl;
    if (server.run())
        return EXIT_SUCCESS;
    std::cerr << "The service can take no more connections.\n";
    return EXIT_FAILURE;
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
        return serve(options);
    } catch (const OptionError& error) {
        std::cerr << "lumarin-service: " << error.what() << "\n";
        return usageError;
    } catch (const std::exception& error) {
        std::cerr << "lumarin-service: " << error.what() << "\n";
        return EXIT_FAILURE;
    }
}
