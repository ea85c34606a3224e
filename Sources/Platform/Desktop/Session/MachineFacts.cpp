#include "Platform/Desktop/Session/MachineFacts.h"

#include "Platform/Foundation/FileManager.h"
#include "Platform/Foundation/Text.h"

#include <algorithm>
#include <array>
#include <string_view>

#include <QString>
#include <QSysInfo>
#include <strings.h>

namespace platform::desktop {

namespace {

// What boards are delivered with.
constexpr std::array fillings{"To Be Filled By O.E.M.",
                              "System Product Name",
                              "System manufacturer",
                              "Default string",
                              "Not Applicable",
                              "Not Specified",
                              "Not Available",
                              "Product Name",
                              "O.E.M.",
                              "OEM",
                              "Unknown",
                              "Undefined",
                              "None",
                              "N/A",
                              "INVALID"};

std::string factOf(const std::filesystem::path& file) {
    const auto fact = text::trimmed(text::repaired(files::contents(file).value_or("")));
    const bool isFilling = std::ranges::any_of(
        fillings, [&](const char* filling) { return strcasecmp(fact.c_str(), filling) == 0; });
    return isFilling ? "" : fact;
}

} // namespace

SystemFacts machineFacts() {
    return {QSysInfo::prettyProductName().toStdString(), hardwareModel("/sys/class/dmi/id")};
}

std::optional<std::string> hardwareModel(const std::filesystem::path& folder) {
    const auto model = factOf(folder / "product_name");
    if (model.empty())
        return std::nullopt;
    const auto maker = factOf(folder / "sys_vendor");
    return maker.empty() || model.starts_with(maker) ? model : maker + ' ' + model;
}

} // namespace platform::desktop
