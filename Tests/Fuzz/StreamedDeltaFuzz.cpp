#include "Core/StreamedDelta.h"
#include "Platform/Foundation/LineSplitter.h"
#include "Platform/Foundation/Text.h"
#include "Require.h"

#include <cstdint>

// The service's stream, from the bytes to the pieces of text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    platform::LineSplitter lines;
    lines.append({reinterpret_cast<const char*>(data), size});
    lines.finish();
    while (auto line = lines.next())
        if (auto payload = lumarin::dataPayload(*line))
            if (auto content = lumarin::deltaContent(*payload))
                require(platform::text::isValid(*content));
    return 0;
}
