#include "Platform/Desktop/Clipboard/SelectionContent.h"

#include "Platform/Foundation/Text.h"

#include <algorithm>
#include <charconv>

namespace platform::desktop {
namespace {

constexpr char separator = '\t';

SelectionForm decoded(std::string type, std::string bytes) {
    auto last = type.rfind(separator);
    auto first = last == std::string::npos || last == 0 ? std::string::npos : type.rfind(separator, last - 1);
    if (first == std::string::npos)
        return {type, type, 8, std::move(bytes)};
    unsigned format = 0;
    std::from_chars(type.data() + last + 1, type.data() + type.size(), format);
    // A program may call its own form so.
    if (format != 8 && format != 16 && format != 32)
        return {type, type, 8, std::move(bytes)};
    return {type.substr(0, first), type.substr(first + 1, last - first - 1),
            static_cast<std::uint8_t>(format), std::move(bytes)};
}

std::string encodedType(const SelectionForm& form) {
    if (form.type == form.target && form.format == 8)
        return form.target;
    return form.target + separator + form.type + separator + std::to_string(form.format);
}

// The kind of a media type; text also for the names that the X server's programs have for it.
std::string_view kindOf(std::string_view target) {
    if (std::ranges::count(textTargets, target) != 0 || target == "TEXT" || target == "COMPOUND_TEXT")
        return "text";
    const auto kind = target.substr(0, target.find('/'));
    return kind.size() == target.size() || kind == "application" || kind.starts_with("x-") ? "" : kind;
}

// Nothing where the text has a character that Latin-1 lacks.
std::optional<std::string> latin1(std::string_view text) {
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        auto byte = static_cast<unsigned char>(text[at]);
        if (byte >= 0xC4)
            return std::nullopt;
        if (byte >= 0xC2)
            byte = static_cast<unsigned char>((byte & 0x03U) << 6U
                                              | (static_cast<unsigned char>(text[++at]) & 0x3FU));
        result += static_cast<char>(byte);
    }
    return result;
}

} // namespace

SelectionContent SelectionContent::of(std::vector<PasteboardItem> items) {
    SelectionContent content;
    for (auto& item : items) {
        for (auto& [type, bytes] : item.representations) {
            auto form = decoded(type, std::move(bytes));
            // A selection is one thing; of several things the first speaks for a type.
            if (!content.form(form.target))
                content.forms.push_back(std::move(form));
        }
    }
    return content;
}

SelectionContent SelectionContent::of(std::string text) {
    auto valid = text::repaired(text);
    SelectionContent content;
    for (const char* target : {"UTF8_STRING", "text/plain;charset=utf-8", "text/plain"})
        content.forms.push_back({target, target, 8, valid});
    if (auto narrow = latin1(valid))
        content.forms.push_back({"STRING", "STRING", 8, *narrow});
    content.forms.push_back({"TEXT", "UTF8_STRING", 8, std::move(valid)});
    return content;
}

PasteboardItem SelectionContent::item() const {
    PasteboardItem result;
    for (const auto& form : forms)
        result.representations.emplace_back(encodedType(form), form.bytes);
    return result;
}

const SelectionForm* SelectionContent::form(std::string_view target) const {
    auto found = std::ranges::find(forms, target, &SelectionForm::target);
    return found == forms.end() ? nullptr : &*found;
}

bool SelectionContent::hasKindOf(std::string_view target) const {
    const auto kind = kindOf(target);
    return std::ranges::any_of(forms,
                               [&](const auto& form) { return kind.empty() || kindOf(form.target) == kind; });
}

std::optional<std::string> SelectionContent::text() const {
    for (const char* target : textTargets) {
        if (const auto* found = form(target))
            if (auto result = textOf(found->type, found->bytes))
                return result;
    }
    return std::nullopt;
}

std::optional<std::string> textOf(std::string_view type, std::string bytes) {
    // Some owners end their text with the zero of a C string.
    while (!bytes.empty() && bytes.back() == '\0')
        bytes.pop_back();
    if (type == "STRING") {
        std::string result;
        for (char byte : bytes)
            text::append(result, static_cast<unsigned char>(byte));
        return result;
    }
    if (type == "COMPOUND_TEXT")
        return std::nullopt;
    return text::repaired(bytes);
}

} // namespace platform::desktop
