#include "Platform/Kit/TimingFunction.h"

#include <gtest/gtest.h>
#include <vector>

using namespace platform;

// The ways were computed to forty digits by halving.
TEST(TimingFunction, FollowsItsCurve) {
    using Ways = std::vector<std::pair<double, double>>;
    const std::vector<std::tuple<const char*, TimingFunction, Ways>> cases{
        {"linear", TimingFunction::linear(), {{0.3, 0.3}}},
        {"default",
         TimingFunction::defaultCurve(),
         {{0.001, 0.00040480782215491227}, {0.5, 0.80240338758485698951}, {0.9, 0.99431647748455636886}}},
        {"ease in",
         TimingFunction::easeIn(),
         {{0.1, 0.01702660965156294180}, {0.5, 0.31535681257253930425}, {0.999, 0.99828599436637150727}}},
        {"ease in, ease out",
         TimingFunction::easeInEaseOut(),
         {{0.25, 0.12916193104731981164}, {0.5, 0.5}, {0.75, 0.87083806895268018835}}},
        {"a fast start that settles",
         {0.25, 1, 0.5, 1},
         {{0.001, 0.00399466667298764121}, {0.25, 0.68858979179339040050}, {0.9, 0.99967160705232532356}}},
        {"upright in the middle",
         {1, 0, 0, 1},
         {{0.1, 0.00376167495808316613}, {0.25, 0.02972460551192519696}, {0.75, 0.97027539448807480303}}},
    };
    for (const auto& [name, curve, ways] : cases) {
        EXPECT_EQ(curve.value(0), 0) << name;
        EXPECT_EQ(curve.value(1), 1) << name;
        for (const auto& [time, way] : ways)
            EXPECT_NEAR(curve.value(time), way, 1e-12) << name << " at " << time;
    }
}

TEST(TimingFunction, NeverGoesBack) {
    for (const TimingFunction& curve : {TimingFunction{1, 0, 0, 1}, TimingFunction{0.25, 1, 0.5, 1},
                                        TimingFunction::easeIn(), TimingFunction::defaultCurve()}) {
        double before = 0;
        for (int step = 1; step <= 10'000; ++step) {
            const double way = curve.value(step / 10'000.0);
            ASSERT_GE(way, before - 1e-12) << step;
            before = way;
        }
    }
}
