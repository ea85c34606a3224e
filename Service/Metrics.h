#pragma once

#include "Service/HTTPS/Exchange.h"

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace lumarin::service {

// What the service has done since it started, in numbers alone. For one thread.
class Metrics {
public:
    // Of the moment, not counted here.
    struct Gauges {
        std::size_t connections = 0;
        std::size_t refusedConnections = 0;
        std::size_t translations = 0;
        double certificateExpiry = 0; // Seconds since 1970.
        std::vector<TranslationEngine::Health> upstreams = {};
    };

    void count(const Exchange& exchange);

    // The text form that monitoring systems read.
    std::string text(const Gauges& gauges) const;

private:
    static constexpr std::array bounds{0.05, 0.1, 0.25, 0.5, 1.0, 2.5, 5.0, 10.0, 30.0, 60.0};

    struct Histogram {
        void add(double seconds);
        void print(std::string& out, const std::string& name, const std::string& help) const;

        std::array<std::uint64_t, bounds.size()> counts{};
        std::uint64_t all = 0;
        double sum = 0;
    };

    std::map<std::pair<std::string, int>, std::uint64_t> requests;
    std::map<std::string, std::uint64_t> failures;
    std::uint64_t pieces = 0;
    Histogram untilFirstPiece;
    Histogram durations;
};

} // namespace lumarin::service
