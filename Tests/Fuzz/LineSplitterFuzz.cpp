#include "Platform/Foundation/LineSplitter.h"
#include "Platform/Foundation/Text.h"
#include "Require.h"

#include <algorithm>
#include <cstdint>
#include <vector>

using namespace platform;

namespace {

std::vector<std::string> linesOf(std::string_view bytes, std::string_view pieceSizes) {
    LineSplitter splitter;
    std::vector<std::string> lines;
    const auto drain = [&] {
        while (auto line = splitter.next())
            lines.push_back(*std::move(line));
    };
    for (const char size : pieceSizes) {
        // A size of zero is an empty piece, and every other one is left to wait for the next.
        splitter.append(bytes.substr(0, static_cast<unsigned char>(size)));
        bytes.remove_prefix(std::min<std::size_t>(bytes.size(), static_cast<unsigned char>(size)));
        if (size % 2 == 0)
            drain();
    }
    splitter.append(bytes);
    splitter.finish();
    drain();
    return lines;
}

} // namespace

// The first bytes say how the others are split into pieces: the lines must be those of the whole.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::string_view pieceSizes = input.substr(0, size / 4);
    const std::string_view bytes = input.substr(pieceSizes.size());

    const std::vector<std::string> lines = linesOf(bytes, {});
    require(linesOf(bytes, pieceSizes) == lines);

    std::string joined;
    for (const std::string& line : lines) {
        require(line.find_first_of("\r\n") == std::string::npos);
        require(text::isValid(line));
        joined += line + "\n";
    }
    require(linesOf(joined, {}) == lines);
    return 0;
}
