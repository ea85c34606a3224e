// What a frame of the pill takes on the main thread, from its layers to the picture that goes to the display.

#include "Platform/Desktop/Painting/MeasuredTexts.h"
#include "Platform/Desktop/Pictures/WindowPicture.h"
#include "Platform/Headless/HeadlessHost.h"
#include "Support/TemporaryFolder.h"
#include "UI/TranslationHUD.h"

#include <benchmark/benchmark.h>

#include <QGuiApplication>

namespace {

using namespace platform;
using namespace platform::desktop;
using namespace std::chrono_literals;

// A machine in memory with the desktop's fonts.
class Machine : public headless::HeadlessHost {
public:
    Machine() : HeadlessHost(folder.path(), folder.path()) { Host::setCurrent(this); }

    WindowServer& windowServer() override { return server; }

    const Window& pill() const { return *server.shown.front(); }

private:
    class Server : public headless::HeadlessWindowServer {
        Size measure(std::string_view text, const Font& font) override { return texts.sizeOf(text, font); }

        MeasuredTexts texts;
    };

    static inline const tests::TemporaryFolder folder;
    Server server;
};

// 560 points wide.
constexpr const char* longText =
    "Hello, could you tell me the price of this sample? 这款样品 قطعة 😀 The minimum order is 500 pieces";

// Draws the stretch of time that begins now, over and over, 60 frames a second.
void drawFrames(benchmark::State& state, const Machine& machine, Duration stretch) {
    const auto scale = static_cast<double>(state.range(0));
    const auto start = machine.clock.now();
    const Duration frame = Duration(1s) / 60;
    WindowPicture picture;
    Duration passed{};
    while (state.KeepRunning()) {
        picture.paint(machine.pill().presentation(start + passed), true, {{scale, scale}, {0, 900 * scale}},
                      Backdrop::plain);
        benchmark::DoNotOptimize(picture.image().constBits());
        passed = (passed + frame) % stretch;
    }
}

void waiting(benchmark::State& state) {
    Machine machine;
    lumarin::TranslationHUD hud;
    hud.show("");
    machine.advance(400ms);
    drawFrames(state, machine, 1800ms);
}

// The caret blinks after a text that fills the pill.
void full(benchmark::State& state) {
    Machine machine;
    lumarin::TranslationHUD hud;
    hud.show("");
    hud.update(longText);
    machine.advance(1s);
    drawFrames(state, machine, 900ms);
}

// To the full width, with the shadow all around.
void widening(benchmark::State& state) {
    Machine machine;
    lumarin::TranslationHUD hud;
    hud.show("");
    hud.update("Hello, could you tell me the price of this sample? The minimum order is");
    machine.advance(1s);
    hud.update(longText);
    drawFrames(state, machine, 180ms);
}

// The sweep and the pulse, in which the letters change their size too.
void success(benchmark::State& state) {
    Machine machine;
    lumarin::TranslationHUD hud;
    hud.show("");
    hud.update(longText);
    machine.advance(1s);
    hud.showDone();
    drawFrames(state, machine, 500ms);
}

void scales(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgName("scale")->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);
    benchmark->Repetitions(9)->ReportAggregatesOnly();
}

BENCHMARK(waiting)->Apply(scales);
BENCHMARK(full)->Apply(scales);
BENCHMARK(widening)->Apply(scales);
BENCHMARK(success)->Apply(scales);

} // namespace

int main(int argumentCount, char** arguments) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argumentCount, arguments);
    benchmark::Initialize(&argumentCount, arguments);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
