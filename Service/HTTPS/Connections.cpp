#include "Service/HTTPS/Connections.h"

namespace lumarin::service {
namespace {

// Ends waits too, unlike closing the socket; whoever waits notices it as the client's doing.
void shutDown(tcp::socket& socket, tcp::socket::shutdown_type what) {
    boost::system::error_code none;
    socket.shutdown(what, none);
}

std::string addressOf(const tcp::socket& socket) {
    boost::system::error_code error;
    const auto client = socket.remote_endpoint(error);
    return error ? std::string() : client.address().to_string();
}

} // namespace

Connections::Place::Place(Connections& all, tcp::socket accepted)
    : socket(std::move(accepted)),
      address(addressOf(socket)),
      connections(all),
      position(all.places.insert(all.places.end(), this)) {}

Connections::Place::~Place() {
    connections.places.erase(position);
    connections.leaving -= isLeaving ? 1 : 0;
}

void Connections::Place::awaitsClient() {
    isWaiting = true;
    waitingSince = Clock::now();
}

bool Connections::makeRoom() {
    if (places.size() - leaving < maximum)
        return true;
    Place* longest = nullptr;
    for (Place* place : places)
        if (place->isWaiting && !place->isLeaving
            && (!longest || place->waitingSince < longest->waitingSince))
            longest = place;
    if (!longest)
        return false;
    longest->isLeaving = true;
    ++leaving;
    shutDown(longest->socket, tcp::socket::shutdown_both);
    return true;
}

void Connections::stop() {
    stopping = true;
    for (Place* place : places)
        if (place->isWaiting)
            shutDown(place->socket, tcp::socket::shutdown_receive);
}

void Connections::breakOff() {
    broken = true;
    for (Place* place : places)
        shutDown(place->socket, tcp::socket::shutdown_both);
}

} // namespace lumarin::service
