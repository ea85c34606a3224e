#include "Platform/Foundation/Dates.h"

#include <gtest/gtest.h>
#include <vector>

using namespace platform;

TEST(Dates, WritesWholeSecondsInUTC) {
    using std::chrono::milliseconds;
    for (const auto& [sinceEpoch, expected] : std::vector<std::pair<std::int64_t, std::string>>{
             {0, "1970-01-01T00:00:00Z"},
             {-1, "1969-12-31T23:59:59Z"},
             {951'827'696'999, "2000-02-29T12:34:56Z"},
             {1'794'854'158'500, "2026-11-16T18:35:58Z"},
             {1'798'761'599'999, "2026-12-31T23:59:59Z"},
         })
        EXPECT_EQ(iso8601(std::chrono::system_clock::time_point(milliseconds(sinceEpoch))), expected);
}
