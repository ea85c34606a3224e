#include "Platform/Desktop/Session/LoadedHTTPSession.h"

#include "Platform/Desktop/Instance/ProgramFiles.h"
#include "Platform/Network/NetworkLibrary.h"

#include <dlfcn.h>

namespace platform::desktop {

namespace {

void* library() {
    static void* const loaded = loadLibrary(networkLibraryFile);
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
