#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <string>

namespace lumarin::service {

// What happens, a JSON object a line. For any thread. Nothing of a user's text and no key ever goes in.
class Log {
public:
    // Takes a line without its end, on the thread of whoever logs.
    using Sink = std::function<void(const std::string& line)>;
    using Fields = nlohmann::ordered_json;

    explicit Log(Sink destination) : sink(std::move(destination)) {}

    // `fields` are an object's.
    void write(const std::string& event, const Fields& fields = Fields::object()) const;

private:
    const Sink sink;
};

} // namespace lumarin::service
