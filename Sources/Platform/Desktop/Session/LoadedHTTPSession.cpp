#include "Platform/Desktop/Session/LoadedHTTPSession.h"

#include "Platform/Network/NetworkLibrary.h"

#include <dlfcn.h>

namespace platform::desktop {

namespace {

void* load() {
    std::error_code error;
    const auto folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    for (const auto& place : {folder, folder.parent_path() / "lib/lumarin/plugins"})
        if (auto* const loaded = dlopen((place / networkLibraryFile).c_str(), RTLD_NOW | RTLD_LOCAL))
            return loaded;
    return nullptr;
}

// It stays: threads of it may be running.
void* library() {
    static void* const loaded = load();
    return loaded;
}

SessionMaker* sessionMaker() {
    auto* const found = library() ? dlsym(library(), sessionMakerName) : nullptr;
    if (!found)
        throw HTTPError("Lumarin is not installed completely: %@ cannot be loaded.", networkLibraryFile);
    return reinterpret_cast<SessionMaker*>(found);
}

} // namespace

void LoadedHTTPSession::prepare() {
    library();
}

std::unique_ptr<HTTPExchange> LoadedHTTPSession::open(HTTPRequest request) {
    std::call_once(isMade, [this] { session = sessionMaker()(configuration, authority); });
    return session->open(std::move(request));
}

} // namespace platform::desktop
