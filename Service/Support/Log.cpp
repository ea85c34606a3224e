#include "Service/Support/Log.h"

#include "Platform/Foundation/Dates.h"

#include <chrono>

namespace lumarin::service {

void Log::write(const std::string& event, const Fields& fields) const {
    Fields line{{"time", platform::iso8601(std::chrono::system_clock::now())}, {"event", event}};
    line.update(fields);
    sink(line.dump(-1, ' ', false, Fields::error_handler_t::replace));
}

} // namespace lumarin::service
