#include "Platform/Desktop/UsableArea.h"

#include <array>

namespace platform::desktop {
namespace {

constexpr std::size_t edges = 4;

// What the window manager keeps free of bars, on the workspace that is shown; all if it doesn't say.
QRect workArea(const XConnection& x, const QRect& all) {
    const auto property = x.property(x.root(), x.atom("_NET_WORKAREA"));
    const auto values = property ? property->values() : std::vector<std::uint32_t>{};
    const auto workspace = std::size_t{x.propertyValue(x.root(), "_NET_CURRENT_DESKTOP").value_or(0)};
    if (values.size() < 4 * (workspace + 1))
        return all;
    const auto value = [&](std::size_t index) { return static_cast<int>(values[4 * workspace + index]); };
    return {value(0), value(1), value(2), value(3)};
}

// What a bar keeps: the widths at the left, right, top and bottom edge, and from where to where each.
using Strut = std::array<int, 3 * edges>;

// Those of all windows, asked for at once.
std::vector<Strut> struts(const XConnection& x) {
    const auto list = x.property(x.root(), x.atom("_NET_CLIENT_LIST"));
    const auto windows = list ? list->values() : std::vector<std::uint32_t>{};
    std::vector<xcb_get_property_cookie_t> questions;
    for (const auto window : windows)
        questions.push_back(
            xcb_get_property(x, 0, window, x.atom("_NET_WM_STRUT_PARTIAL"), XCB_ATOM_CARDINAL, 0, 3 * edges));
    std::vector<Strut> result;
    for (const auto& question : questions) {
        const auto answer = x.reply(xcb_get_property_reply, question);
        Strut strut{};
        if (!answer || xcb_get_property_value_length(answer.get()) != int{sizeof strut})
            continue;
        const auto* values = static_cast<const std::uint32_t*>(xcb_get_property_value(answer.get()));
        for (std::size_t index = 0; index < strut.size(); ++index)
            strut[index] = static_cast<int>(values[index]);
        result.push_back(strut);
    }
    return result;
}

} // namespace

UsableArea::UsableArea(const XConnection& x, bool hasSeveralMonitors)
    : common(0, 0, x.screen().width_in_pixels, x.screen().height_in_pixels) {
    if (!hasSeveralMonitors) {
        common = workArea(x, common);
        return;
    }
    for (const auto& [left, right, top, bottom, leftFrom, leftTo, rightFrom, rightTo, topFrom, topTo,
                      bottomFrom, bottomTo] : struts(x))
        for (const auto& bar :
             {QRect(0, leftFrom, left, leftTo - leftFrom + 1),
              QRect(common.width() - right, rightFrom, right, rightTo - rightFrom + 1),
              QRect(topFrom, 0, topTo - topFrom + 1, top),
              QRect(bottomFrom, common.height() - bottom, bottomTo - bottomFrom + 1, bottom)})
            if (!bar.isEmpty())
                reserved.push_back(bar);
}

QRect UsableArea::of(const QRect& monitor) const {
    QRect free = common & monitor;
    for (const auto& bar : reserved) {
        const auto covered = bar & monitor;
        // A bar of the monitor beyond keeps this one's whole height or width.
        const bool isAtTopOrBottom = covered.width() > covered.height();
        if (covered.isEmpty()
            || (isAtTopOrBottom ? covered.height() == monitor.height() : covered.width() == monitor.width()))
            continue;
        if (isAtTopOrBottom && covered.top() == monitor.top())
            free.setTop(std::max(free.top(), covered.bottom() + 1));
        else if (isAtTopOrBottom)
            free.setBottom(std::min(free.bottom(), covered.top() - 1));
        else if (covered.left() == monitor.left())
            free.setLeft(std::max(free.left(), covered.right() + 1));
        else
            free.setRight(std::min(free.right(), covered.left() - 1));
    }
    return free.isEmpty() ? monitor : free;
}

} // namespace platform::desktop
