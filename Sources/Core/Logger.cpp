#include "Core/Logger.h"

#include "Data/DataDirectory.h"
#include "Platform/Foundation/Dates.h"
#include "Platform/Foundation/FileManager.h"
#include "Platform/Foundation/Text.h"
#include "Platform/Host.h"

#include <cstdio>
#include <string>

namespace lumarin {

void LumLog::log(std::string_view message) {
    auto time = platform::iso8601(platform::Host::current().mainRunLoop().date());
    // Names and texts of other programs may be in any encoding; the log stays readable as a whole.
    auto line = platform::text::repaired(message) + '\n';
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fflush(stdout);
    platform::files::append(logURL(), "[" + time + "] " + line);
}

std::filesystem::path LumLog::logURL() {
    return dataDirectory() / "debug.log";
}

} // namespace lumarin
