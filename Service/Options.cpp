#include "Service/Options.h"

#include <charconv>
#include <cstdlib>
#include <getopt.h>

namespace lumarin::service {
namespace {

constexpr std::string_view usageText = R"(Usage: lumarin-service [OPTION]...
Answer Lumarin's translation requests over HTTPS.

The text is put into English by a built-in gloss of Chinese, word by word from
a table of trade terms and common phrases. It needs no network, lets you try
Lumarin, and is no match for a translator; what it does not know passes through
unchanged.

  --listen HOST:PORT   where to listen (default 127.0.0.1:8443);
                       port 0 takes any free one
  --certificate FILE   the certificate in PEM form, with its private key beside
                       it under the same name ending in .key; both are made for
                       localhost if missing (default: certificate.pem under
                       $XDG_DATA_HOME/lumarin-service)
  --help               show this text

A client has to trust the certificate file as an authority.
)";

void setListen(Options& options, std::string_view address) {
    const auto refuse = [&] {
        return OptionError("--listen takes HOST:PORT, not \"" + std::string(address) + "\".");
    };
    const auto colon = address.rfind(':');
    if (colon == std::string_view::npos)
        throw refuse();
    std::string_view host = address.substr(0, colon);
    const std::string_view port = address.substr(colon + 1);
    if (host.starts_with('[') && host.ends_with(']'))
        host = host.substr(1, host.size() - 2);
    const auto [end, error] = std::from_chars(port.data(), port.data() + port.size(), options.port);
    if (host.empty() || error != std::errc{} || end != port.data() + port.size())
        throw refuse();
    options.host = host;
}

std::filesystem::path defaultCertificate() {
    const char* data = std::getenv("XDG_DATA_HOME");
    // A relative path there is invalid and to be ignored.
    if (data && *data == '/')
        return std::filesystem::path(data) / "lumarin-service/certificate.pem";
    const char* home = std::getenv("HOME");
    if (!home || *home != '/')
        throw OptionError("There is no home folder to keep the certificate in; give --certificate FILE.");
    return std::filesystem::path(home) / ".local/share/lumarin-service/certificate.pem";
}

} // namespace

Options parseOptions(int count, char* const* arguments) {
    enum : int { listen = 1, certificate, help };
    static constexpr option known[] = {{"listen", required_argument, nullptr, listen},
                                       {"certificate", required_argument, nullptr, certificate},
                                       {"help", no_argument, nullptr, help},
                                       {nullptr, 0, nullptr, 0}};
    Options options;
    optind = 0; // Starts getopt afresh.
    while (true) {
        switch (getopt_long(count, arguments, ":", known, nullptr)) {
        case listen:
            setListen(options, optarg);
            break;
        case certificate:
            options.certificate = optarg;
            break;
        case help:
            options.help = true;
            break;
        case ':':
            throw OptionError(std::string(arguments[optind - 1]) + " needs a value.");
        case -1:
            if (optind < count)
                throw OptionError("Unexpected argument \"" + std::string(arguments[optind])
                                  + "\"; see --help.");
            if (options.certificate.empty() && !options.help)
                options.certificate = defaultCertificate();
            return options;
        default:
            throw OptionError("Unknown option \"" + std::string(arguments[optind - 1]) + "\"; see --help.");
        }
    }
}

std::string_view usage() {
    return usageText;
}

} // namespace lumarin::service
