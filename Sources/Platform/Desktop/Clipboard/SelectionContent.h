#pragma once

#include "Platform/Input/Pasteboard.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform::desktop {

// One form of what a selection holds: the name it is asked for by, and the property it is answered with.
struct SelectionForm {
    std::string target;
    std::string type;
    std::uint8_t format = 8;
    std::string bytes;
};

// What a selection holds, in each of its forms. A value.
struct SelectionContent {
    std::vector<SelectionForm> forms;

    // A form whose property is of another type than its name carries that in the item's type, behind tabs:
    // "TEXT<tab>STRING<tab>8".
    static SelectionContent of(std::vector<PasteboardItem> items);
    static SelectionContent of(std::string text);
    PasteboardItem item() const;

    const SelectionForm* form(std::string_view target) const;

    // Whether a form of the name may be missing: there is another one that carries the like of it, text for a
    // text, a picture for a picture. What only one program understands stands beside any other form.
    bool hasKindOf(std::string_view target) const;

    // The plain text, in valid UTF-8.
    std::optional<std::string> text() const;
};

// The targets that carry plain text, the best first.
inline constexpr const char* textTargets[] = {"UTF8_STRING", "text/plain;charset=utf-8", "STRING"};

// The text of a property that answered one of them, in valid UTF-8; nothing in an unknown encoding.
std::optional<std::string> textOf(std::string_view type, std::string bytes);

} // namespace platform::desktop
