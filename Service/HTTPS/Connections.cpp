#include "Service/HTTPS/Connections.h"

#include <algorithm>
#include <cstdint>

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
    if (error)
        return {};
    auto address = client.address();
    if (address.is_v4())
        return address.to_string();
    const auto whole = address.to_v6();
    if (whole.is_v4_mapped())
        return asio::ip::make_address_v4(asio::ip::v4_mapped, whole).to_string();
    // Who has one address of a network of 64 bits has all of them.
    auto bytes = whole.to_bytes();
    std::fill(bytes.begin() + bytes.size() / 2, bytes.end(), std::uint8_t{0});
    return asio::ip::address_v6(bytes).to_string() + "/64";
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
