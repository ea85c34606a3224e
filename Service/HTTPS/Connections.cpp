#include "Service/HTTPS/Connections.h"

#include <sys/socket.h>
#include <system_error>

namespace lumarin::service {

bool Connections::add(int accepted, Serve serve) {
    joinEnded();
    Descriptor socket(accepted);
    std::lock_guard lock(mutex);
    if (taken >= maximum && !makeRoom())
        return false;
    Place& place = *places.insert(places.end(), Place(*this, socket.release()));
    try {
        place.thread = std::thread([this, &place, serve = std::move(serve)] {
            serve(place.socket.number(), place);
            end(place);
        });
    } catch (const std::system_error&) {
        places.pop_back();
        return false;
    }
    ++taken;
    ++running;
    return true;
}

void Connections::awaitEnd() {
    {
        std::unique_lock lock(mutex);
        hasFewer.wait(lock, [this] { return running == 0; });
    }
    joinEnded();
}

std::size_t Connections::count() const {
    std::lock_guard lock(mutex);
    return running;
}

bool Connections::makeRoom() {
    Place* longest = nullptr;
    for (Place& place : places)
        if (place.isWaiting && !place.isLeaving && !place.hasEnded
            && (!longest || place.waitingSince < longest->waitingSince))
            longest = &place;
    if (!longest)
        return false;
    longest->isLeaving = true;
    --taken;
    ::shutdown(longest->socket.number(), SHUT_RDWR);
    return true;
}

void Connections::end(Place& place) {
    std::lock_guard lock(mutex);
    place.socket.close();
    place.hasEnded = true;
    if (!place.isLeaving)
        --taken;
    --running;
    hasFewer.notify_all();
}

void Connections::joinEnded() {
    std::list<Place> ended;
    {
        std::lock_guard lock(mutex);
        for (auto place = places.begin(); place != places.end();) {
            const auto next = std::next(place);
            if (place->hasEnded)
                ended.splice(ended.end(), places, place);
            place = next;
        }
    }
    for (Place& place : ended)
        place.thread.join();
}

void Connections::Place::awaitsClient() {
    std::lock_guard lock(connections.mutex);
    isWaiting = true;
    waitingSince = Clock::now();
}

void Connections::Place::worksForClient() {
    std::lock_guard lock(connections.mutex);
    isWaiting = false;
}

} // namespace lumarin::service
