#include "Data/DataDirectory.h"

#include "Platform/Foundation/FileManager.h"
#include "Platform/Host.h"

namespace lumarin {

std::filesystem::path dataDirectory() {
    return platform::Host::current().directories().applicationSupport / "Lumarin";
}

std::filesystem::path createDataDirectory() {
    auto directory = dataDirectory();
    platform::files::createPrivateDirectory(directory);
    return directory;
}

} // namespace lumarin
