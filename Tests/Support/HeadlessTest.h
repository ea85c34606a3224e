#pragma once

#include "Platform/Headless/HeadlessHost.h"
#include "Support/Files.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace tests {

using namespace std::chrono_literals;

// A test on a machine in memory, with the project's own resources and folders of its own.
class HeadlessTest : public testing::Test {
protected:
    HeadlessTest() { platform::Host::setCurrent(&host); }

    std::filesystem::path dataFile(const std::string& name) const {
        return folder / "Application Support" / "Lumarin" / name;
    }

    // Runs a task on the main loop and gives what it gives, in as much of the machine's time as it takes.
    template <typename T>
    T finish(platform::Task<T> task) {
        std::optional<T> result;
        std::exception_ptr error;
        spawn(host.clock, settle(std::move(task), &result, &error));
        host.clock.drain(1h);
        if (error)
            std::rethrow_exception(error);
        return std::move(result.value());
    }

    // How long the program goes on by itself: an hour if it never ends.
    platform::Duration timeToRest() {
        const auto start = host.clock.now();
        host.clock.drain(1h);
        return host.clock.now() - start;
    }

    static void expectRect(const platform::Rect& rect, const platform::Rect& expected,
                           const std::string& name) {
        EXPECT_NEAR(rect.x, expected.x, 1e-9) << name;
        EXPECT_NEAR(rect.y, expected.y, 1e-9) << name;
        EXPECT_NEAR(rect.width, expected.width, 1e-9) << name;
        EXPECT_NEAR(rect.height, expected.height, 1e-9) << name;
    }

    TemporaryFolder folder;
    platform::headless::HeadlessHost host{folder.path(), LUMARIN_RESOURCES};

private:
    template <typename T>
    static platform::Task<void> settle(platform::Task<T> task, std::optional<T>* result,
                                       std::exception_ptr* error) {
        try {
            result->emplace(co_await std::move(task));
        } catch (...) {
            *error = std::current_exception();
        }
    }
};

} // namespace tests
