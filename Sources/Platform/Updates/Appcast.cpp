#include "Platform/Updates/Appcast.h"

#include "Platform/Foundation/Text.h"
#include "Platform/Updates/PlainText.h"
#include "Platform/Updates/PublicKey.h"
#include "Platform/Updates/UpdateError.h"
#include "Platform/Updates/Version.h"

#include <algorithm>
#include <charconv>
#include <pugixml.hpp>

namespace platform {
namespace {

// The form's own names stand in this space, whatever prefix the feed gives it.
constexpr std::string_view nameSpace = "http://www.andymatuschak.org/xml-namespaces/sparkle";

constexpr std::string_view thisSystem = "linux";
#if defined(__x86_64__)
constexpr std::string_view thisArchitecture = "linux-x64";
#elif defined(__aarch64__)
constexpr std::string_view thisArchitecture = "linux-arm64";
#else
constexpr std::string_view thisArchitecture = "";
#endif

constexpr std::size_t longestVersion = 64;

std::string_view trimmedView(std::string_view text) {
    const auto begin = text.find_first_not_of(" \t\r\n");
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(" \t\r\n") - begin + 1);
}

// Of fields such as "name: value", each ended by a separator, the value of the one of that name.
std::string_view fieldIn(std::string_view fields, char separator, std::string_view name, char mark) {
    while (!fields.empty()) {
        const auto field = fields.substr(0, fields.find(separator));
        fields.remove_prefix(std::min(fields.size(), field.size() + 1));
        const auto trimmed = trimmedView(field);
        if (trimmed.starts_with(name) && trimmed.substr(name.size()).starts_with(mark))
            return trimmedView(trimmed.substr(name.size() + 1));
    }
    return {};
}

// Whether it is written in the one form in which moments can be compared as texts.
bool isMoment(std::string_view text) {
    return std::ranges::equal(text, std::string_view("0000-00-00T00:00:00Z"), [](char character, char form) {
        return form == '0' ? character >= '0' && character <= '9' : character == form;
    });
}

std::optional<std::size_t> number(std::string_view digits) {
    std::size_t value = 0;
    const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc() || stop != digits.data() + digits.size())
        return std::nullopt;
    return value;
}

std::string contentOf(pugi::xml_node node) {
    std::string text;
    for (const auto& child : node.children())
        if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata)
            text += child.value();
    return text;
}

class ItemReader {
public:
    ItemReader(pugi::xml_node root, std::string_view wantedLanguage)
        : prefix(prefixIn(root)), language(wantedLanguage) {}

    std::optional<AppcastItem> read(pugi::xml_node item) const {
        const pugi::xml_node package = enclosureOf(item);
        if (!package || !text(item, "channel").empty())
            return std::nullopt;
        AppcastItem result;
        const auto either = [&](const char* name) {
            auto element = text(item, name);
            return element.empty() ? attribute(package, name) : element;
        };
        result.versionString = either("version");
        if (!version::isValid(result.versionString))
            return std::nullopt;
        result.displayVersionString = text::prefix(abridged(either("shortVersionString")), longestVersion);
        if (result.displayVersionString.empty())
            result.displayVersionString = result.versionString;
        result.minimumSystemVersion = text(item, "minimumSystemVersion");
        result.maximumSystemVersion = text(item, "maximumSystemVersion");
        result.fileURL = trimmedView(package.attribute("url").value());
        result.contentLength = number(trimmedView(package.attribute("length").value())).value_or(0);
        result.signature = decodeBase64(attribute(package, "edSignature")).value_or("");
        if (result.signature.size() != PublicKey::signatureLength)
            result.signature.clear();
        readNotes(item, result);
        return result;
    }

private:
    static std::string prefixIn(pugi::xml_node root) {
        constexpr std::string_view declaration = "xmlns:";
        for (const auto& each : root.attributes())
            if (each.value() == nameSpace && std::string_view(each.name()).starts_with(declaration))
                return std::string(each.name()).substr(declaration.size()) + ":";
        return "sparkle:";
    }

    std::string named(const char* name) const { return prefix + name; }

    std::string text(pugi::xml_node item, const char* name) const {
        return std::string(trimmedView(contentOf(item.child(named(name).c_str()))));
    }

    std::string attribute(pugi::xml_node node, const char* name) const {
        return std::string(trimmedView(node.attribute(named(name).c_str()).value()));
    }

    // The package for this system: one made for it before one that does not say what it is made for.
    pugi::xml_node enclosureOf(pugi::xml_node item) const {
        const std::string other = named("enclosure");
        pugi::xml_node best;
        int bestRank = 0;
        for (const auto& child : item.children()) {
            if (child.name() != std::string_view("enclosure") && child.name() != other)
                continue;
            const std::string system = attribute(child, "os");
            const int rank = system == thisArchitecture && !system.empty() ? 3
                             : system == thisSystem                        ? 2
                             : system.empty()                              ? 1
                                                                           : 0;
            if (rank > bestRank) {
                best = child;
                bestRank = rank;
            }
        }
        return best;
    }

    // Of the elements of a name the one in the wanted language, else the one in none or the first.
    pugi::xml_node localized(pugi::xml_node item, const std::string& name) const {
        pugi::xml_node best;
        int bestRank = -1;
        for (const auto& child : item.children(name.c_str())) {
            const std::string_view tag = child.attribute("xml:lang").value();
            const bool isWanted = tag.substr(0, tag.find('-')) == language.substr(0, language.find('-'));
            const int rank = tag.empty() ? 1 : isWanted ? 2 : 0;
            if (rank > bestRank) {
                best = child;
                bestRank = rank;
            }
        }
        return best;
    }

    void readNotes(pugi::xml_node item, AppcastItem& result) const {
        const auto description = localized(item, "description");
        const std::string format = attribute(description, "format");
        const std::string notes = contentOf(description);
        result.releaseNotes = abridged(format.empty() || format == "html" ? plainText(notes) : notes);
        result.releaseNotesURL = abridged(trimmedView(contentOf(localized(item, named("releaseNotesLink")))));
    }

    const std::string prefix;
    const std::string_view language;
};

} // namespace

SignedFeed splitSignature(std::string_view feed) {
    constexpr std::string_view begin = "<!-- sparkle-signatures:";
    constexpr std::string_view end = "-->";
    const auto at = feed.rfind(begin);
    if (at == std::string_view::npos)
        return {feed, std::nullopt};
    const auto comment = trimmedView(feed.substr(at));
    const auto lines = comment.substr(begin.size(), comment.find(end) - begin.size());
    // Nothing that is not signed may stand before the comment, and nothing at all behind it.
    const bool isWhole = comment.find(end) == comment.size() - end.size();
    const bool isOfAll = number(fieldIn(lines, '\n', "length", ':')) == at;
    return {feed.substr(0, at),
            isWhole && isOfAll ? fieldIn(lines, '\n', "edSignature", ':') : std::string_view()};
}

Appcast parseAppcast(std::string_view content, std::string_view language) {
    pugi::xml_document document;
    const auto result = document.load_buffer(content.data(), content.size());
    const pugi::xml_node root = document.child("rss");
    const pugi::xml_node channel = root.child("channel");
    if (!result || !channel)
        throw UpdateError("updates.error.malformed");
    Appcast appcast;
    const std::string valid = contentOf(channel.child("dcterms:valid"));
    const auto start = fieldIn(valid, ';', "start", '=');
    const auto end = fieldIn(valid, ';', "end", '=');
    if (isMoment(start) && isMoment(end)) {
        appcast.signedAt = start;
        appcast.expires = end;
    }
    const ItemReader reader(root, language);
    for (const auto& each : channel.children("item"))
        if (auto item = reader.read(each))
            appcast.items.push_back(std::move(*item));
    return appcast;
}

} // namespace platform
