#pragma once

#include "Service/Support/Handles.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <list>
#include <mutex>
#include <thread>

namespace lumarin::service {

// The open connections, a thread each, up to a number. When all places are taken, a new connection gets the
// place of the one that has waited longest for its client, be it idle or slow: who is quick is always served.
class Connections {
public:
    // A connection's place, from the side of the thread that serves it.
    class Place {
    public:
        // Waiting for the client's bytes, the connection may have to give its place to another.
        void awaitsClient();
        void worksForClient();

    private:
        friend class Connections;
        using Clock = std::chrono::steady_clock;

        Place(Connections& all, int accepted) : connections(all), socket(accepted) {}

        Connections& connections;
        Descriptor socket;
        bool isWaiting = true;
        bool isLeaving = false;
        bool hasEnded = false;
        Clock::time_point waitingSince = Clock::now();
        std::thread thread;
    };
    using Serve = std::function<void(int socket, Place&)>;

    explicit Connections(std::size_t most) : maximum(most) {}
    ~Connections() { awaitEnd(); }

    // Calls `serve` on a thread of its own and then closes the socket. False, with the socket closed, when
    // every other connection is being answered.
    bool add(int accepted, Serve serve);

    // Waits for all of them to end.
    void awaitEnd();

    // Any thread.
    std::size_t count() const;

private:
    bool makeRoom();
    void end(Place& place);
    void joinEnded();

    const std::size_t maximum;
    mutable std::mutex mutex;
    std::condition_variable hasFewer;
    std::list<Place> places;
    std::size_t taken = 0;   // Of those that are not leaving.
    std::size_t running = 0; // Threads.
};

} // namespace lumarin::service
