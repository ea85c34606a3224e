#include "Service/Gloss/Gloss.h"
#include "Service/Options.h"
#include "Service/Server.h"
#include "Service/Tokens.h"
#include "Service/Upstream/Upstream.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/experimental/awaitable_operators.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <csignal>
#include <exception>
#include <iostream>
#include <string>
#include <sys/resource.h>

namespace {

using namespace lumarin::service;

constexpr std::chrono::seconds timeToEnd{10};

// Ends the server on the signals while it runs: gives the answers under way some time, or none when asked
// again.
asio::awaitable<void> endOnSignals(asio::signal_set& signals, Server& server, const Log& log) {
    using namespace asio::experimental::awaitable_operators;
    co_await signals.async_wait(asio::use_awaitable);
    log.write("stopping");
    server.stop();
    co_await (signals.async_wait(asio::use_awaitable) || pause(timeToEnd));
    server.abandon();
}

// Each translation takes several descriptors; the usual limit is there for programs that use select().
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
        throw OptionError(error.what()); // A certificate or tokens that cannot be used.
    }
}

std::string address(const std::string& host, std::uint16_t port) {
    const bool isIpv6 = host.find(':') != std::string::npos;
    return "https://" + (isIpv6 ? "[" + host + "]" : host) + ":" + std::to_string(port);
}

void serve(const Options& options) {
    raiseDescriptorLimit();
    Log log([](const std::string& line) { std::cerr << line + "\n"; });
    const auto engine = makeEngine(options);
    const auto server = makeServer(*engine, options, log);
    const std::uint16_t port = server->bind(options.host, options.port);
    asio::signal_set signals(server->context(), SIGTERM, SIGINT);
    asio::co_spawn(server->context(), endOnSignals(signals, *server, log), asio::detached);
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
        if (!options.removeClient.empty())
            Tokens::remove(options.tokens, options.removeClient);
        if (!options.addClient.empty())
            std::cout << Tokens::add(options.tokens, options.addClient) << "\n";
        if (options.addClient.empty() && options.removeClient.empty())
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
