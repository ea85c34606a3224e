#include "Platform/Headless/HeadlessHost.h"

namespace platform::headless {
namespace {

Directories foldersBelow(const std::filesystem::path& root, const std::filesystem::path& resources) {
    Directories folders;
    folders.applicationSupport = root / "Application Support";
    folders.desktop = root / "Desktop";
    folders.configuration = root / "Configuration";
    folders.downloads = root / "Downloads";
    folders.executable = root / "bin" / "Lumarin";
    folders.resources = resources;
    folders.applications = root / "Applications";
    return folders;
}

} // namespace

HeadlessHost::HeadlessHost(const std::filesystem::path& root, const std::filesystem::path& resources)
    : folders(foldersBelow(root, resources)),
      bundle(resources, folders.configuration / "Info.json"),
      defaults(folders.configuration / "defaults.json") {}

HeadlessHost::~HeadlessHost() {
    network.disconnect();
    clock.drain(std::chrono::hours(1));
}

std::shared_ptr<HTTPSession> HeadlessHost::makeHTTPSession(HTTPSessionConfiguration configuration) {
    return sessionMaker ? sessionMaker(configuration) : network.makeSession();
}

} // namespace platform::headless
