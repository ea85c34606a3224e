#include "Service/Metrics.h"

#include <algorithm>
#include <charconv>
#include <functional>

namespace lumarin::service {
namespace {

std::string number(double value) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    return {text.data(), end};
}

void head(std::string& out, const std::string& name, const char* type, const std::string& help) {
    out += "# HELP " + name + " " + help + "\n# TYPE " + name + " " + type + "\n";
}

void single(std::string& out, const std::string& name, const char* type, const std::string& help,
            const std::string& value) {
    head(out, name, type, help);
    out += name + " " + value + "\n";
}

// A line for each model server, which are numbered from 1 on: their addresses are nobody's business.
template <typename Value>
void each(std::string& out, const std::string& name, const char* type, const std::string& help,
          const std::vector<TranslationEngine::Health>& upstreams, Value value) {
    if (upstreams.empty())
        return;
    head(out, name, type, help);
    for (std::size_t index = 0; index < upstreams.size(); ++index)
        out += name + "{upstream=\"" + std::to_string(index + 1) + "\"} "
               + std::to_string(std::invoke(value, upstreams[index])) + "\n";
}

} // namespace

void Metrics::count(const Exchange& exchange) {
    using Seconds = std::chrono::duration<double>;
    ++requests[{exchange.endpoint, exchange.status}];
    if (!exchange.failure.empty())
        ++failures[exchange.failure];
    pieces += exchange.pieces;
    if (!exchange.untilFirstPiece)
        return;
    untilFirstPiece.add(Seconds(*exchange.untilFirstPiece).count());
    durations.add(Seconds(Exchange::Clock::now() - exchange.start).count());
}

std::string Metrics::text(const Gauges& gauges) const {
    std::string out;
    head(out, "lumarin_requests_total", "counter", "Requests answered, by endpoint and HTTP status.");
    for (const auto& [key, value] : requests)
        out += "lumarin_requests_total{endpoint=\"" + key.first + "\",status=\"" + std::to_string(key.second)
               + "\"} " + std::to_string(value) + "\n";
    head(out, "lumarin_failures_total", "counter", "Translations refused or broken off, by cause.");
    for (const auto& [cause, value] : failures)
        out += "lumarin_failures_total{cause=\"" + cause + "\"} " + std::to_string(value) + "\n";
    single(out, "lumarin_pieces_total", "counter", "Pieces of translations sent.", std::to_string(pieces));
    untilFirstPiece.print(out, "lumarin_first_piece_seconds",
                          "From a request to the first piece of its translation.");
    durations.print(out, "lumarin_translation_seconds", "From a request to the end of its answer.");
    single(out, "lumarin_translations", "gauge", "Translations under way.",
           std::to_string(gauges.translations));
    single(out, "lumarin_connections", "gauge", "Open connections.", std::to_string(gauges.connections));
    single(out, "lumarin_refused_connections_total", "counter", "Connections there was no place for.",
           std::to_string(gauges.refusedConnections));
    single(out, "lumarin_certificate_expiry_timestamp_seconds", "gauge",
           "When the certificate expires, in seconds since 1970.", number(gauges.certificateExpiry));
    using Health = TranslationEngine::Health;
    each(out, "lumarin_upstream_up", "gauge", "Whether the model server answered when last asked.",
         gauges.upstreams, [](const Health& health) { return health.isWell ? 1 : 0; });
    each(out, "lumarin_upstream_translations_total", "counter",
         "Translations that the model server has begun.", gauges.upstreams, &Health::translations);
    each(out, "lumarin_upstream_failures_total", "counter",
         "Translations that the model server has not begun.", gauges.upstreams, &Health::failures);
    return out;
}

void Metrics::Histogram::add(double seconds) {
    for (std::size_t bucket = 0; bucket < bounds.size(); ++bucket)
        counts[bucket] += seconds <= bounds[bucket] ? 1 : 0;
    ++all;
    sum += seconds;
}

void Metrics::Histogram::print(std::string& out, const std::string& name, const std::string& help) const {
    head(out, name, "histogram", help);
    for (std::size_t bucket = 0; bucket < bounds.size(); ++bucket)
        out +=
            name + "_bucket{le=\"" + number(bounds[bucket]) + "\"} " + std::to_string(counts[bucket]) + "\n";
    out += name + "_bucket{le=\"+Inf\"} " + std::to_string(all) + "\n" + name + "_sum " + number(sum) + "\n"
           + name + "_count " + std::to_string(all) + "\n";
}

} // namespace lumarin::service
