#include "Platform/Desktop/Typing/TerminalKeys.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <ranges>
#include <string_view>

namespace platform::desktop {

namespace {

struct Terminal {
    std::string_view name;
    TerminalKeys keys;
};

// Control+Shift+C is a control character like Control+C to the terminals that let it through, and some do as
// long as nothing is selected. Control+Insert never is one: the widget behind most of these terminals copies
// by it.
constexpr auto terminals = std::to_array<Terminal>({
    {"gnome-terminal", TerminalKeys::insert},
    {"gnome-terminal-server", TerminalKeys::insert},
    {"org.gnome.terminal", TerminalKeys::insert},
    {"kgx", TerminalKeys::insert},
    {"org.gnome.console", TerminalKeys::insert},
    {"ptyxis", TerminalKeys::insert},
    {"org.gnome.ptyxis", TerminalKeys::insert},
    {"mate-terminal", TerminalKeys::insert},
    {"xfce4-terminal", TerminalKeys::insert},
    {"lxterminal", TerminalKeys::insert},
    {"io.elementary.terminal", TerminalKeys::insert},
    {"pantheon-terminal", TerminalKeys::insert},
    {"com.raggesilver.blackbox", TerminalKeys::insert},
    {"guake", TerminalKeys::insert},
    {"tilda", TerminalKeys::insert},
    {"tilix", TerminalKeys::insert},
    {"com.gexperts.tilix", TerminalKeys::insert},
    {"terminator", TerminalKeys::insert},
    {"termite", TerminalKeys::insert},
    {"roxterm", TerminalKeys::insert},
    {"sakura", TerminalKeys::insert},
    {"kitty", TerminalKeys::shiftedLetter},
    {"alacritty", TerminalKeys::shiftedLetter},
    {"wezterm", TerminalKeys::shiftedLetter},
    {"wezterm-gui", TerminalKeys::shiftedLetter},
    {"org.wezfurlong.wezterm", TerminalKeys::shiftedLetter},
    {"st", TerminalKeys::shiftedLetter},
    {"st-256color", TerminalKeys::shiftedLetter},
    {"stterm", TerminalKeys::shiftedLetter},
    {"xterm", TerminalKeys::none},
    {"uxterm", TerminalKeys::none},
    {"koi8rxterm", TerminalKeys::none},
    {"rxvt", TerminalKeys::none},
    {"urxvt", TerminalKeys::none},
    {"urxvtd", TerminalKeys::none},
    {"mlterm", TerminalKeys::none},
    {"aterm", TerminalKeys::none},
    {"eterm", TerminalKeys::none},
    {"zutty", TerminalKeys::none},
    {"konsole", TerminalKeys::none},
    {"org.kde.konsole", TerminalKeys::none},
    {"yakuake", TerminalKeys::none},
    {"org.kde.yakuake", TerminalKeys::none},
    {"qterminal", TerminalKeys::none},
    {"deepin-terminal", TerminalKeys::none},
    {"cool-retro-term", TerminalKeys::none},
    {"terminology", TerminalKeys::none},
    {"cosmic-term", TerminalKeys::none},
    {"com.system76.cosmicterm", TerminalKeys::none},
    {"ghostty", TerminalKeys::none},
    {"com.mitchellh.ghostty", TerminalKeys::none},
    {"contour", TerminalKeys::none},
    {"rio", TerminalKeys::none},
    {"foot", TerminalKeys::none},
    {"footclient", TerminalKeys::none},
    {"hyper", TerminalKeys::none},
    {"tabby", TerminalKeys::none},
    {"warp-terminal", TerminalKeys::none},
    {"dev.warp.warp", TerminalKeys::none},
});

std::string lowerCase(std::string_view text) {
    std::string result(text);
    std::ranges::transform(result, result.begin(),
                           [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return result;
}

} // namespace

std::optional<TerminalKeys> terminalKeysOf(std::span<const std::string> names) {
    for (const auto& name : names) {
        const auto* terminal = std::ranges::find(terminals, lowerCase(name), &Terminal::name);
        if (terminal != terminals.end())
            return terminal->keys;
    }
    return std::nullopt;
}

} // namespace platform::desktop
