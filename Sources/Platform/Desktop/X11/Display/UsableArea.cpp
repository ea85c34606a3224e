#include "Platform/Desktop/X11/Display/UsableArea.h"

#include "Platform/Desktop/X11/Display/WindowPlace.h"

#include <algorithm>
#include <array>

namespace platform::desktop {
namespace {

// Left, right, top and bottom.
constexpr std::size_t edges = 4;

// How far a part of the display is from its edges.
std::array<int, edges> distances(const QRect& display, const QRect& part) {
    return {part.left() - display.left(), display.right() - part.right(), part.top() - display.top(),
            display.bottom() - part.bottom()};
}

// The display changes its size while monitors come and go; what the connection knows is that of its start.
QRect outlineOf(const XConnection& x) {
    const auto size = x.reply(xcb_get_geometry_reply, xcb_get_geometry(x, x.root()));
    return size ? QRect(0, 0, size->width, size->height) : QRect();
}

std::vector<QRect> rectangles(const XConnection& x, const std::string& name) {
    const auto property = x.property(x.root(), x.atom(name));
    const auto values = property ? property->values() : std::vector<std::uint32_t>{};
    const auto value = [&](std::size_t index) { return static_cast<int>(values[index]); };
    std::vector<QRect> result;
    for (std::size_t index = 0; index + 4 <= values.size(); index += 4)
        result.emplace_back(value(index), value(index + 1), value(index + 2), value(index + 3));
    return result;
}

// What a bar keeps: the widths at the edges, and from where to where each.
using Strut = std::array<int, 3 * edges>;

// Those that have bars: the window manager's, and others that stay out of its hands.
std::vector<xcb_window_t> windowsOn(const XConnection& x) {
    const auto list = x.property(x.root(), x.atom("_NET_CLIENT_LIST"));
    auto windows = list ? list->values() : std::vector<std::uint32_t>{};
    if (const auto tree = x.reply(xcb_query_tree_reply, xcb_query_tree(x, x.root())))
        windows.insert(windows.end(), xcb_query_tree_children(tree.get()),
                       xcb_query_tree_children(tree.get()) + xcb_query_tree_children_length(tree.get()));
    return windows;
}

// Some bars leave open from where to where they reach: as far as their window does.
void completeRanges(Strut& strut, const XConnection& x, xcb_window_t window) {
    if (std::any_of(strut.begin() + edges, strut.end(), [](int value) { return value != 0; }))
        return;
    const auto place = placeOf(x, window);
    for (std::size_t edge = 0; place && edge < edges; ++edge) {
        const bool isAtSide = edge < 2;
        strut[edges + 2 * edge] = isAtSide ? place->top() : place->left();
        strut[edges + 2 * edge + 1] = isAtSide ? place->bottom() : place->right();
    }
}

bool isShown(const XConnection& x, xcb_window_t window) {
    const auto state = x.reply(xcb_get_window_attributes_reply, xcb_get_window_attributes(x, window));
    return state && state->map_state == XCB_MAP_STATE_VIEWABLE;
}

// Those of all windows, asked for at once.
std::vector<Strut> struts(const XConnection& x) {
    const auto windows = windowsOn(x);
    std::vector<xcb_get_property_cookie_t> questions;
    questions.reserve(windows.size());
    for (const auto window : windows)
        questions.push_back(
            xcb_get_property(x, 0, window, x.atom("_NET_WM_STRUT_PARTIAL"), XCB_ATOM_CARDINAL, 0, 3 * edges));
    std::vector<Strut> result;
    for (std::size_t number = 0; number < windows.size(); ++number) {
        const auto answer = x.reply(xcb_get_property_reply, questions[number]);
        Strut strut{};
        if (!answer || xcb_get_property_value_length(answer.get()) != int{sizeof strut}
            || !isShown(x, windows[number]))
            continue;
        const auto* values = static_cast<const std::uint32_t*>(xcb_get_property_value(answer.get()));
        for (std::size_t index = 0; index < strut.size(); ++index)
            strut[index] = static_cast<int>(values[index]);
        completeRanges(strut, x, windows[number]);
        result.push_back(strut);
    }
    return result;
}

// Bars that the window manager draws itself are no windows: only its figure for the whole display tells of
// them. Such a bar begins at the last edge of a monitor before its end, on the primary one if that has its
// edge there.
std::vector<Strut> ownStruts(const QRect& display, const QRect& work, const std::vector<QRect>& monitors,
                             const std::vector<Strut>& ofWindows) {
    const auto taken = distances(display, work);
    std::vector<Strut> result;
    for (std::size_t edge = 0; edge < edges; ++edge) {
        if (std::ranges::any_of(ofWindows, [&](const Strut& strut) { return strut[edge] >= taken[edge]; }))
            continue;
        const QRect* place = nullptr;
        for (const auto& monitor : monitors) {
            const auto distance = distances(display, monitor)[edge];
            if (distance < taken[edge] && (!place || distance > distances(display, *place)[edge]))
                place = &monitor;
        }
        if (!place)
            continue;
        const bool isAtSide = edge < 2;
        Strut strut{};
        strut[edge] = taken[edge];
        strut[edges + 2 * edge] = isAtSide ? place->top() : place->left();
        strut[edges + 2 * edge + 1] = isAtSide ? place->bottom() : place->right();
        result.push_back(strut);
    }
    return result;
}

} // namespace

UsableArea::UsableArea(const XConnection& x, const std::vector<QRect>& monitors) {
    const auto display = outlineOf(x);
    const auto workspace = x.propertyValue(x.root(), "_NET_CURRENT_DESKTOP").value_or(0);
    const auto workAreas = rectangles(x, "_NET_WORKAREA");
    const bool isKnown = workspace < workAreas.size();
    const auto work = isKnown ? workAreas[workspace] : display;
    if (monitors.size() > 1)
        known = rectangles(x, "_GTK_WORKAREAS_D" + std::to_string(workspace));
    else if (isKnown)
        known = {work};
    if (!known.empty())
        return;
    auto bars = struts(x);
    const auto own = ownStruts(display, work, monitors, bars);
    bars.insert(bars.end(), own.begin(), own.end());
    for (const auto& [left, right, top, bottom, leftFrom, leftTo, rightFrom, rightTo, topFrom, topTo,
                      bottomFrom, bottomTo] : bars)
        for (const auto& bar :
             {QRect(0, leftFrom, left, leftTo - leftFrom + 1),
              QRect(display.width() - right, rightFrom, right, rightTo - rightFrom + 1),
              QRect(topFrom, 0, topTo - topFrom + 1, top),
              QRect(bottomFrom, display.height() - bottom, bottomTo - bottomFrom + 1, bottom)})
            if (!bar.isEmpty())
                reserved.push_back(bar);
}

QRect UsableArea::of(const QRect& monitor) const {
    QRect free = monitor;
    for (const auto& area : known)
        if (area.intersects(monitor))
            free &= area;
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
