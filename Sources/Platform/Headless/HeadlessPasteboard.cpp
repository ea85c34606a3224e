#include "Platform/Headless/HeadlessPasteboard.h"

namespace platform::headless {

void HeadlessPasteboard::setText(const std::string& text) {
    items = {PasteboardItem{{{plainText, text}}}};
}

std::optional<std::string> HeadlessPasteboard::text() const {
    for (const auto& item : items)
        for (const auto& [type, bytes] : item.representations)
            if (type == plainText)
                return bytes;
    return std::nullopt;
}

Task<std::vector<PasteboardItem>> HeadlessPasteboard::pasteboardItems() {
    co_return items;
}

Task<void> HeadlessPasteboard::clearContents() {
    items.clear();
    co_return;
}

Task<void> HeadlessPasteboard::writeObjects(std::vector<PasteboardItem> objects) {
    items = std::move(objects);
    co_return;
}

Task<std::optional<std::string>> HeadlessPasteboard::string() {
    co_return text();
}

Task<void> HeadlessPasteboard::setString(std::string text) {
    setText(text);
    co_return;
}

} // namespace platform::headless
