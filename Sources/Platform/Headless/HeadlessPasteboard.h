#pragma once

#include "Platform/Input/Pasteboard.h"

namespace platform::headless {

// A pasteboard in memory. `items` is what is on it.
class HeadlessPasteboard : public Pasteboard {
public:
    static constexpr const char* plainText = "text/plain;charset=utf-8";

    std::vector<PasteboardItem> items;

    // What an application does that copies or pastes text.
    void setText(const std::string& text);
    std::optional<std::string> text() const;

    Task<std::vector<PasteboardItem>> pasteboardItems() override;
    Task<void> clearContents() override;
    Task<void> writeObjects(std::vector<PasteboardItem> objects) override;
    Task<std::optional<std::string>> string() override;
    Task<void> setString(std::string text) override;
};

} // namespace platform::headless
