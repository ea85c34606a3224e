#include "Platform/Kit/Font.h"

#include "Platform/Host.h"

namespace platform {

Size sizeWithAttributes(std::string_view text, const Font& font) {
    return Host::current().windowServer().measure(text, font);
}

} // namespace platform
