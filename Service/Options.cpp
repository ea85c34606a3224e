#include "Service/Options.h"

#include "Service/HTTPS/Certificate.h"
#include "Service/Settings.h"

#include <algorithm>
#include <cstdlib>
#include <getopt.h>
#include <utility>

namespace lumarin::service {
namespace {

constexpr std::string_view usageText = R"(Usage: lumarin-service [OPTION]...
Answer Lumarin's translation requests over HTTPS.

Where translations come from:
  --upstream URL       the base address of a server that speaks the
                       chat-completions protocol, such as
                       http://127.0.0.1:8000/v1; over https its certificate is
                       checked, plain http goes to whatever address you name;
                       gloss for the built-in gloss
  --model NAME         the model to ask it for
  --key-file FILE      a file that holds the key it wants, readable by you alone
  --upstream-authority FILE
                       an authority in PEM form to trust for it, besides the
                       system's
  --parameters JSON    more members of each request to it, such as
                       {"temperature": 0}
  --timeout SECONDS    the longest time it may say nothing (default 8; 60 for a
                       model that was found); with more, Lumarin is kept
                       waiting as long as it takes
  --upstreams LIST     several model servers, best kept in the file of --config:
                       [{"upstream": URL, "model": NAME, "weight": 2}, ...]
                       with any of the above in each. Those with a weight share
                       the translations; the others are asked, in their order,
                       when those fail
  --prompt client|fixed
                       whose instruction the model follows: the client's, with
                       its style and terms (the default), or a fixed one, so
                       that nobody has it do anything but translate
  --check              have it translate one sentence, say what came and how
                       fast or what to mend, and end; status 1 if it failed

Without --upstream it looks on this computer's loopback for the usual model
servers and takes the first that offers a model to chat with (or the one that
--model names), also one that starts later. Until there is any, and with
--upstream gloss, the text is put into English by a built-in gloss of Chinese,
word by word from a table of trade terms and common phrases. It needs no
network, lets you try Lumarin, and is no match for a translator; what it does
not know passes through unchanged.

Who is served:
  --listen HOST:PORT   where to listen (default 127.0.0.1:8443);
                       port 0 takes any free one
  --certificate FILE   the certificate in PEM form, with its private key beside
                       it under the same name ending in .key; both are made if
                       missing (default: certificate.pem under
                       $XDG_DATA_HOME/lumarin-service)
  --names NAME,...     host names and addresses to make it for, besides
                       localhost
  --appcast FOLDER     a folder of updates to serve under /appcast/
  --tokens FILE        serve only clients with a token; the file has a line for
                       each and is read anew when it changes
  --add-client NAME    give a client a token, print it and end
  --remove-client NAME take it away and end; both change the file of --tokens

How much is served; 0 is no limit:
  --rate N             translations a minute (default 6000)
  --at-once N          translations under way (default 256)
  --address-rate N     the same for one network address (default 1500);
  --address-at-once N  (default 64); 0 behind a load balancer, whose address is
                       everybody's
  --device-rate N      the same for one computer (default 60)
  --device-at-once N   (default 4)
  --connections N      open connections (default 1000, at least 1)
  --request-time SECONDS
                       the longest time for one request (default 300, at least
                       1), --timeout included

  --config FILE        a JSON file with any of these by the same names, such as
                       {"upstream": "http://127.0.0.1:8000/v1", "rate": 600};
                       paths in it are relative to its folder, and options on
                       the command line win over it
  --help               show this text

A client has to trust the certificate file as an authority. GET /healthz tells
whether the service runs, GET /metrics what it has done.
)";

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

// What stands on the command line alone, beside the settings.
enum : int { config = 1000, checkOnly, help, addClient, removeClient };

// A line for each setting, numbered from 1 on in their order, and for the options that are none.
std::vector<option> knownOptions() {
    std::vector<option> known;
    for (const Setting& setting : settings())
        known.push_back({setting.name, required_argument, nullptr, static_cast<int>(known.size()) + 1});
    known.push_back({"config", required_argument, nullptr, config});
    known.push_back({"check", no_argument, nullptr, checkOnly});
    known.push_back({"help", no_argument, nullptr, help});
    known.push_back({"add-client", required_argument, nullptr, addClient});
    known.push_back({"remove-client", required_argument, nullptr, removeClient});
    known.push_back({nullptr, 0, nullptr, 0});
    return known;
}

void checkAppcast(const Options& options) {
    if (options.appcast.empty())
        return;
    const auto folder = std::filesystem::canonical(options.appcast);
    auto secrets = options.secretFiles;
    secrets.push_back(keyOf(options.certificate));
    if (!options.tokens.empty())
        secrets.push_back(options.tokens);
    for (const auto& secret : secrets)
        if (std::ranges::mismatch(folder,
                                  std::filesystem::weakly_canonical(std::filesystem::absolute(secret)))
                .in1
            == folder.end())
            throw OptionError("The folder of --appcast holds " + secret.string()
                              + ", which would be served to everybody.");
}

Options finished(Options options) {
    const std::string& ofOne = options.needsAddress.empty() ? options.needsModel : options.needsAddress;
    if (!options.upstreams.empty() && !ofOne.empty())
        throw OptionError("--" + ofOne + " has to be said of each of --upstreams, within it.");
    const bool isGloss = options.upstream == Options::gloss;
    if (options.upstreams.empty() && (options.upstream.empty() || isGloss) && !options.needsAddress.empty())
        throw OptionError("--" + options.needsAddress + " is of no use without the address of --upstream.");
    if (isGloss && !options.needsModel.empty())
        throw OptionError("--" + options.needsModel + " is of no use with --upstream gloss.");
    if (options.certificate.empty())
        options.certificate = defaultCertificate();
    if (options.tokens.empty() && !(options.addClient + options.removeClient).empty())
        throw OptionError("--tokens FILE has to say where clients' tokens are kept.");
    checkAppcast(options);
    return options;
}

} // namespace

Options parseOptions(int count, char* const* arguments) {
    const auto known = knownOptions();
    std::vector<std::pair<const Setting*, std::string>> chosen;
    Options options;
    optind = 0; // Starts getopt afresh.
    for (int found = 0; (found = getopt_long(count, arguments, ":", known.data(), nullptr)) != -1;) {
        if (found == ':')
            throw OptionError(std::string(arguments[optind - 1]) + " needs a value.");
        if (found == '?') {
            // Set for a letter behind a single dash; getopt may not be done with its word.
            const bool isLetter = optopt > 0 && optopt < config;
            throw OptionError(
                "Unknown option \""
                + (isLetter ? std::string{'-', static_cast<char>(optopt)} : arguments[optind - 1])
                + "\"; see --help.");
        }
        if (found == config)
            setFromFile(options, optarg);
        else if (found == checkOnly)
            options.check = true;
        else if (found == help)
            options.help = true;
        else if (found == addClient)
            options.addClient = optarg;
        else if (found == removeClient)
            options.removeClient = optarg;
        else
            chosen.emplace_back(&settings()[static_cast<std::size_t>(found) - 1], optarg);
    }
    if (optind < count)
        throw OptionError("Unexpected argument \"" + std::string(arguments[optind]) + "\"; see --help.");
    if (options.help)
        return options;
    for (const auto& [setting, value] : chosen)
        setFromCommandLine(options, *setting, value);
    return finished(std::move(options));
}

std::string_view usage() {
    return usageText;
}

} // namespace lumarin::service
