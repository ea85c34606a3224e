#include "Service/Settings.h"

#include "Platform/Foundation/FileManager.h"
#include "Platform/Foundation/HTTPSession.h"
#include "Platform/Foundation/Text.h"
#include "Platform/Network/CurlAddress.h"
#include "Service/Support/PrivateFile.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <set>

namespace lumarin::service {
namespace {

namespace files = platform::files;

template <typename Number>
Number number(std::string_view text, Number least, Number most) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size() || value < least || value > most)
        throw OptionError("takes a whole number from " + std::to_string(least) + " to " + std::to_string(most)
                          + ", not \"" + std::string(text) + "\".");
    return value;
}

void setListen(Options& options, const std::string& value) {
    const OptionError refusal("takes HOST:PORT, not \"" + value + "\".");
    const std::string_view address = value;
    const auto colon = address.rfind(':');
    if (colon == std::string_view::npos)
        throw refusal;
    std::string_view host = address.substr(0, colon);
    const std::string_view port = address.substr(colon + 1);
    if (host.starts_with('[') && host.ends_with(']'))
        host = host.substr(1, host.size() - 2);
    const auto [end, error] = std::from_chars(port.data(), port.data() + port.size(), options.port);
    if (host.empty() || error != std::errc{} || end != port.data() + port.size())
        throw refusal;
    options.host = host;
}

void setNames(Options& options, const std::string& value) {
    options.names.clear();
    std::size_t start = 0;
    while (start <= value.size()) {
        const std::size_t end = std::min(value.find(',', start), value.size());
        const std::string name = value.substr(start, end - start);
        const bool isGood = std::ranges::all_of(
            name, [](unsigned char c) { return std::isalnum(c) != 0 || c == '.' || c == '-' || c == ':'; });
        if (name.empty() || !isGood)
            throw OptionError("takes host names and addresses with commas between them, not \"" + value
                              + "\".");
        options.names.push_back(name);
        start = end + 1;
    }
}

void setUpstream(Options& options, const std::string& value) {
    options.upstreams.clear();
    if (value == Options::gloss) {
        options.upstream = value;
        return;
    }
    try {
        const platform::CurlAddress address(value, platform::CurlAddress::PlainHTTP::everywhere);
        if (address.url.find_first_of("?#@") != std::string::npos)
            throw platform::HTTPError("It may hold no name, no key and no query.");
        options.upstream = address.url;
    } catch (const platform::HTTPError& error) {
        throw OptionError("takes gloss or a base address such as http://127.0.0.1:8000/v1. "
                          + std::string(error.what()));
    }
    // Many a server's description names the whole address.
    for (const std::string_view suffix : {"/", "/chat/completions", "/"})
        while (options.upstream.ends_with(suffix))
            options.upstream.resize(options.upstream.size() - suffix.size());
}

void setModel(Options& options, const std::string& value) {
    if (!platform::text::isValid(value))
        throw OptionError("takes a name in UTF-8.");
    options.model = value;
}

void setPrompt(Options& options, const std::string& value) {
    if (value != "client" && value != "fixed")
        throw OptionError("takes client or fixed, not \"" + value + "\".");
    options.hasFixedPrompt = value == "fixed";
}

std::string readFile(const std::string& path) {
    const auto result = files::read(path);
    if (result.status != files::ReadStatus::read)
        throw OptionError("names the file " + path
                          + (result.status == files::ReadStatus::missing ? ", which does not exist."
                                                                         : ", which cannot be read."));
    return result.bytes;
}

void setKeyFile(Options& options, const std::string& value) {
    std::string key = readFile(value);
    if (const std::string exposed = exposure(value); !exposed.empty())
        throw OptionError("names the file " + value + ", " + exposed);
    while (!key.empty() && std::isspace(static_cast<unsigned char>(key.back())) != 0)
        key.pop_back();
    const auto isGraphic = [](unsigned char c) { return std::isgraph(c) != 0; };
    if (key.empty() || !std::ranges::all_of(key, isGraphic))
        throw OptionError("names the file " + value + ", which does not hold a key on a line of its own.");
    options.key = key;
    options.secretFiles.emplace_back(value);
}

void setAuthority(Options& options, const std::string& value) {
    if (readFile(value).find("-----BEGIN CERTIFICATE-----") == std::string::npos)
        throw OptionError("names the file " + value + ", which holds no certificate in PEM form.");
    options.upstreamAuthority = value;
}

void setParameters(Options& options, const std::string& value) {
    options.parameters = nlohmann::json::parse(value, nullptr, false);
    if (!options.parameters.is_object())
        throw OptionError("takes a JSON object, not \"" + value + "\".");
}

void setAppcast(Options& options, const std::string& value) {
    if (!std::filesystem::is_directory(value))
        throw OptionError("names the folder " + value + ", which does not exist.");
    options.appcast = value;
}

template <int Options::*field, int least, int most>
void setNumber(Options& options, const std::string& value) {
    options.*field = number(value, least, most);
}

template <auto field, int most>
void setSeconds(Options& options, const std::string& value) {
    options.*field = std::chrono::seconds(number(value, 1, most));
}

constexpr int million = 1'000'000;

using Need = Setting::Need;

constexpr auto all = std::to_array<Setting>({
    {"upstream", Setting::Kind::text, setUpstream},
    {"model", Setting::Kind::text, setModel, Need::model},
    {"key-file", Setting::Kind::path, setKeyFile, Need::address},
    {"upstream-authority", Setting::Kind::path, setAuthority, Need::address},
    {"parameters", Setting::Kind::object, setParameters, Need::model},
    {"timeout", Setting::Kind::number, setSeconds<&Options::timeout, 3600>, Need::model},
    {"upstreams", Setting::Kind::upstreams, nullptr},
    {"prompt", Setting::Kind::text, setPrompt},
    {"listen", Setting::Kind::text, setListen},
    {"certificate", Setting::Kind::path,
     [](Options& options, const std::string& value) { options.certificate = value; }},
    {"names", Setting::Kind::text, setNames},
    {"rate", Setting::Kind::number, setNumber<&Options::rate, 0, million>},
    {"at-once", Setting::Kind::number, setNumber<&Options::atOnce, 0, million>},
    {"address-rate", Setting::Kind::number, setNumber<&Options::addressRate, 0, million>},
    {"address-at-once", Setting::Kind::number, setNumber<&Options::addressAtOnce, 0, million>},
    {"device-rate", Setting::Kind::number, setNumber<&Options::deviceRate, 0, million>},
    {"device-at-once", Setting::Kind::number, setNumber<&Options::deviceAtOnce, 0, million>},
    {"connections", Setting::Kind::number, setNumber<&Options::connections, 1, million>},
    {"request-time", Setting::Kind::number, setSeconds<&Options::requestTime, 86400>},
    {"appcast", Setting::Kind::path, setAppcast},
    {"tokens", Setting::Kind::path,
     [](Options& options, const std::string& value) { options.tokens = value; }},
});

// The value as it would be written on the command line.
std::string textOf(const nlohmann::json& value, Setting::Kind kind) {
    switch (kind) {
    case Setting::Kind::number:
        if (value.is_number_integer())
            return value.dump();
        throw OptionError("has to be a whole number.");
    case Setting::Kind::object:
        if (value.is_object())
            return value.dump();
        throw OptionError("has to be an object.");
    case Setting::Kind::upstreams:
        return value.dump();
    case Setting::Kind::text:
    case Setting::Kind::path:
        break;
    }
    if (!value.is_string())
        throw OptionError("has to be a string.");
    return value.get<std::string>();
}

const Setting& settingOf(const std::string& name) {
    const auto setting =
        std::ranges::find(all, name, [](const Setting& each) { return std::string(each.name); });
    if (setting == all.end())
        throw OptionError("is not known; see --help.");
    return *setting;
}

void set(Options& options, const Setting& setting, const std::string& value,
         const std::filesystem::path& folder);

// One of several model servers: what it may say is what could be said of the only one, and its weight.
void addUpstream(Options& options, const nlohmann::json& server, const std::filesystem::path& folder) {
    constexpr int mostWeight = 1000;
    Options one;
    for (const auto& [name, value] : server.items()) {
        try {
            if (name == "weight") {
                one.weight = number(textOf(value, Setting::Kind::number), 0, mostWeight);
                continue;
            }
            const Setting& setting = settingOf(name);
            if (name != "upstream" && setting.need == Need::nothing)
                throw OptionError("is nothing to say of one model server.");
            set(one, setting, textOf(value, setting.kind), folder);
        } catch (const OptionError& error) {
            throw OptionError("has a \"" + name + "\" that " + error.what());
        }
    }
    if (one.upstream.empty() || one.upstream == Options::gloss)
        throw OptionError("needs the address of each as \"upstream\".");
    options.upstreams.push_back(one);
    options.secretFiles.insert(options.secretFiles.end(), one.secretFiles.begin(), one.secretFiles.end());
}

void setUpstreams(Options& options, const std::string& value, const std::filesystem::path& folder) {
    const auto list = nlohmann::json::parse(value, nullptr, false);
    if (!list.is_array() || list.empty()
        || !std::ranges::all_of(list, [](const auto& server) { return server.is_object(); }))
        throw OptionError("takes a list of objects.");
    options.upstreams.clear();
    options.upstream.clear();
    for (const auto& server : list)
        addUpstream(options, server, folder);
}

// Relative paths are relative to `folder`.
void set(Options& options, const Setting& setting, const std::string& value,
         const std::filesystem::path& folder) {
    const bool isPath = setting.kind == Setting::Kind::path;
    if (isPath && value.empty())
        throw OptionError("names nothing.");
    if (setting.kind == Setting::Kind::upstreams)
        setUpstreams(options, value, folder);
    else
        setting.set(options, isPath ? (folder / value).string() : value);
    if (setting.need == Need::address)
        options.needsAddress = setting.name;
    if (setting.need == Need::model)
        options.needsModel = setting.name;
}

// "line 3, column 7" of a position in a text, counted from 1 on.
std::string place(std::string_view text, std::size_t position) {
    const std::string_view before = text.substr(0, position == 0 ? 0 : position - 1);
    return "line " + std::to_string(std::ranges::count(before, '\n') + 1) + ", column "
           + std::to_string(before.size() - (before.rfind('\n') + 1) + 1);
}

// The object in a configuration file. A name that stands twice would win or lose unnoticed.
nlohmann::json parseConfiguration(const std::string& text) {
    using nlohmann::json;
    std::set<std::string> names;
    const auto check = [&](int depth, json::parse_event_t event, const json& name) {
        if (depth == 1 && event == json::parse_event_t::key && !names.insert(name).second)
            throw OptionError("has \"" + name.get<std::string>() + "\" twice.");
        return true;
    };
    try {
        json config = json::parse(text, check);
        if (!config.is_object())
            throw OptionError("is not a JSON object.");
        return config;
    } catch (const json::parse_error& error) {
        throw OptionError("is not JSON: see " + place(text, error.byte) + ".");
    }
}

} // namespace

std::span<const Setting> settings() {
    return all;
}

void setFromCommandLine(Options& options, const Setting& setting, const std::string& value) {
    try {
        set(options, setting, value, {});
    } catch (const OptionError& error) {
        throw OptionError("--" + std::string(setting.name) + " " + error.what());
    }
}

void setFromFile(Options& options, const std::filesystem::path& file) {
    std::string bytes;
    try {
        bytes = readFile(file);
    } catch (const OptionError& error) {
        throw OptionError("--config " + std::string(error.what()));
    }
    nlohmann::json config;
    try {
        config = parseConfiguration(bytes);
    } catch (const OptionError& error) {
        throw OptionError("The configuration in " + file.string() + " " + error.what());
    }
    options.secretFiles.push_back(file);
    const auto folder = std::filesystem::absolute(file).parent_path();
    for (const auto& [name, value] : config.items()) {
        try {
            const Setting& setting = settingOf(name);
            if (name == "upstreams" && config.contains("upstream"))
                throw OptionError("stands beside \"upstream\"; one of them has to go.");
            set(options, setting, textOf(value, setting.kind), folder);
        } catch (const OptionError& error) {
            throw OptionError("\"" + name + "\" in " + file.string() + " " + error.what());
        }
    }
}

} // namespace lumarin::service
