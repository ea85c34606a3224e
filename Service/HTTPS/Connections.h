#pragma once

#include "Service/Support/Async.h"

#include <chrono>
#include <cstddef>
#include <list>
#include <string>

namespace lumarin::service {

// The open connections, up to a number. When all places are taken, a new connection gets the place of the one
// that has waited longest for its client, be it idle or slow: who is quick is always served. For one thread.
class Connections {
public:
    // A connection's place, for as long as it lives. Dropping it closes the connection.
    class Place {
    public:
        Place(Connections& all, tcp::socket accepted);
        ~Place();
        Place(const Place&) = delete;
        Place& operator=(const Place&) = delete;

        // Waiting for the client's bytes, the connection may have to give its place to another.
        void awaitsClient();
        void worksForClient() { isWaiting = false; }

        bool isStopping() const { return connections.stopping; }
        bool isBrokenOff() const { return connections.broken; }

        tcp::socket socket;
        const std::string address; // The client's.

    private:
        friend class Connections;
        using Clock = std::chrono::steady_clock;

        Connections& connections;
        const std::list<Place*>::iterator position;
        bool isWaiting = true;
        bool isLeaving = false;
        Clock::time_point waitingSince = Clock::now();
    };

    explicit Connections(std::size_t most) : maximum(most) {}

    // Whether there is a place for one more. Makes one if need be and possible: not while every other
    // connection is being answered.
    bool makeRoom();

    // No more is waited for what clients might still send.
    void stop();
    // Ends all of them at once.
    void breakOff();

    std::size_t count() const { return places.size(); }

private:
    const std::size_t maximum;
    std::list<Place*> places;
    std::size_t leaving = 0;
    bool stopping = false;
    bool broken = false;
};

} // namespace lumarin::service
