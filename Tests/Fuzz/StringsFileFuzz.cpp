#include "Platform/Foundation/StringsFile.h"
#include "Platform/Foundation/Text.h"
#include "Require.h"

#include <cstdint>

using namespace platform;

namespace {

std::string quoted(std::string_view text) {
    std::string result = "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\')
            result += '\\';
        result += character;
    }
    return result + "\"";
}

} // namespace

// Whatever is read must be text, and read the same when it is written as a table of its own.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto table = parseStrings({reinterpret_cast<const char*>(data), size});
    if (!table)
        return 0;
    std::string written = "\xEF\xBB\xBF";
    for (const auto& [key, value] : *table) {
        require(text::isValid(key) && text::isValid(value));
        written += quoted(key) + " = " + quoted(value) + ";\n";
    }
    require(parseStrings(written) == table);
    return 0;
}
