#pragma once

#include "Service/Options.h"

#include <span>
#include <string>

namespace lumarin::service {

// One thing that can be chosen, under the same name on the command line and in the configuration file.
struct Setting {
    // How it is written in the file; on the command line everything is text.
    enum class Kind { text, path, number, object, upstreams };

    const char* name;
    Kind kind;
    // Takes the value as text. Throws an OptionError without saying which setting is meant.
    void (*set)(Options& options, const std::string& value);
    // What it means nothing without: the address of a model server, a model of any.
    enum class Need { nothing, address, model } need = Need::nothing;
};

std::span<const Setting> settings();

// Throws an OptionError that names the option.
void setFromCommandLine(Options& options, const Setting& setting, const std::string& value);

// Reads a configuration file; paths in it are relative to its folder. Throws an OptionError that names the
// file.
void setFromFile(Options& options, const std::filesystem::path& file);

} // namespace lumarin::service
