#include "Core/Diagnostics.h"
#include "Core/Logger.h"
#include "Support/HeadlessTest.h"

#include <cstdlib>
#include <ctime>

using namespace lumarin;
using namespace tests;

namespace {

class Report : public HeadlessTest {
protected:
    Report() {
        setenv("TZ", "Asia/Shanghai", 1);
        tzset();
        std::filesystem::create_directory(folder / "Desktop");
    }
    ~Report() override {
        unsetenv("TZ");
        tzset();
    }

    std::string text() {
        const auto file = Diagnostics::generateReport();
        EXPECT_EQ(file, folder / "Desktop" / "Lumarin-Diagnostics-20261117-023558.txt");
        return bytesOf(*file);
    }

    // What the report says of a log, after its heading.
    std::string tailOf(const std::string& log) {
        std::filesystem::create_directories(dataFile("").parent_path());
        folder.write("Application Support/Lumarin/debug.log", log);
        const std::string heading = "=== Recent log (last 300 lines) ===\n";
        const auto report = text();
        return report.substr(report.find(heading) + heading.size());
    }
};

std::string numberedLines(int first, int last) {
    std::string lines;
    for (int i = first; i <= last; ++i)
        lines += std::to_string(i) + "\n";
    return lines;
}

} // namespace

TEST_F(Report, HoldsTheFactsThatSupportAsksFor) {
    std::filesystem::create_directories(dataFile("").parent_path());
    folder.write("Application Support/Lumarin/config.json", R"({"mode": "free", "targetLang": "chinese"})");
    folder.write("Application Support/Lumarin/debug.log", "=== Lumarin starting ===\n[then] done");
    std::filesystem::create_directories(folder / "Applications" / "Raycast.app");
    std::filesystem::create_directories(folder / "Applications" / "Loop.app");
    EXPECT_EQ(text(), R"(=== Lumarin Diagnostics ===
Generated: 2026-11-16 18:35:58 +0000

App version: 1.0.0 (build 1)
macOS: Version 14.5 (Build 23F79)
Mac model: Mac14,2
Architecture: Apple Silicon (arm64)

=== Permissions ===
Accessibility: GRANTED

=== Potentially conflicting apps installed ===
- Loop
- Raycast

=== Current settings ===
Mode: free
Target language: chinese (ZH)
Style: casual

=== Recent log (last 300 lines) ===
=== Lumarin starting ===
[then] done
)");
}

TEST_F(Report, SaysWhatIsMissing) {
    host.keys.isPermitted = false;
    host.facts = {"Linux", std::nullopt};
    const auto report = text();
    for (const auto* part : {"macOS: Linux\nArchitecture: Apple Silicon (arm64)\n\n",
                             "Accessibility: NOT GRANTED  <-- Fn won't work without this\n\n",
                             "installed ===\n(none of the usual suspects)\n\n",
                             "Mode: ai\nTarget language: english (EN)\nStyle: casual\n\n",
                             "=== Recent log (last 300 lines) ===\n(no debug.log found)\n"})
        EXPECT_PRED_FORMAT2(testing::IsSubstring, part, report);
}

TEST_F(Report, EndsWithTheLatestOfTheLog) {
    for (const auto& [log, expected] : std::vector<std::pair<std::string, std::string>>{
             {numberedLines(1, 1000), numberedLines(702, 1000)},
             {numberedLines(1, 299) + "end", numberedLines(1, 299) + "end\n"},
             {numberedLines(1, 300) + "end", numberedLines(2, 300) + "end\n"},
             {"one\n\nthree", "one\n\nthree\n"},
             {"", "\n"},
             {"broken \xff", "(no debug.log found)\n"},
         })
        EXPECT_EQ(tailOf(log), expected);
    tailOf("");
    LumLog::log("from \xff");
    EXPECT_TRUE(text().ends_with("Z] from \uFFFD\n")) << "in the encoding of another program";
}
