#include "Core/ClipboardGuard.h"

#include "Platform/Host.h"

#include <utility>

namespace lumarin {

using platform::Host;

platform::Task<void> ClipboardGuard::save() {
    savedItems.clear();
    savedItems = co_await Host::current().generalPasteboard().pasteboardItems();
}

platform::Task<void> ClipboardGuard::restore() {
    auto& pasteboard = Host::current().generalPasteboard();
    auto items = std::exchange(savedItems, {});
    co_await pasteboard.clearContents();
    if (!items.empty())
        co_await pasteboard.writeObjects(std::move(items));
}

} // namespace lumarin
