#include "Platform/Host.h"

namespace platform {
namespace {

Host* currentHost = nullptr;

} // namespace

Host& Host::current() {
    return *currentHost;
}

void Host::setCurrent(Host* host) {
    currentHost = host;
}

} // namespace platform
