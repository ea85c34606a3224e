#pragma once

#include "Platform/Foundation/Task.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace platform {

// One thing on a pasteboard in each of its forms: (type, bytes), the richest first.
struct PasteboardItem {
    std::vector<std::pair<std::string, std::string>> representations;

    bool operator==(const PasteboardItem&) const = default;
};

// The clipboard all applications share. Each operation may wait, within a bound, for the application at the
// other end; none blocks the thread or is interrupted by a cancellation, and only those fail that say so. Any
// thread, one operation at a time.
class Pasteboard {
public:
    virtual ~Pasteboard() = default;

    // Free-standing copies of all items; a form whose bytes cannot be had is left out. Throws PasteboardError
    // where there is something and nothing of it can be had, so that it is not cleared unsaved.
    virtual Task<std::vector<PasteboardItem>> pasteboardItems() = 0;
    virtual Task<void> clearContents() = 0;
    virtual Task<void> writeObjects(std::vector<PasteboardItem> items) = 0;

    // The plain text, in valid UTF-8.
    virtual Task<std::optional<std::string>> string() = 0;
    // Throws PasteboardError where another program keeps the clipboard: what is pasted would be its content.
    virtual Task<void> setString(std::string text) = 0;
};

} // namespace platform
