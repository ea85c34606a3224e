#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace lumarin {

// What the program was started for.
struct CommandLine {
    enum class Purpose { run, tellRunningCopy, help, version, misunderstood };

    explicit CommandLine(std::span<char* const> arguments);

    Purpose purpose = Purpose::run;
    // For the running copy: one of the key's commands.
    std::string command;

    static constexpr std::string_view usage = R"(usage: Lumarin [COMMAND]

Without a command it starts; where a copy runs, that opens its menu or window.
Commands for the copy that runs, to be bound to a key of the desktop's:
  press      as if Fn were pressed
  release    as if it were released: the translation replaces the text
  toggle     one after the other, for desktops that tell of presses alone
  cancel     as Escape while Fn is held
Other commands:
  --version  the version
  --help     this
)";
};

} // namespace lumarin
