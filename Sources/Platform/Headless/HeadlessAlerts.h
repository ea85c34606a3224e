#pragma once

#include "Platform/Kit/Alert.h"

#include <deque>

namespace platform::headless {

// Alerts that are answered as a test laid down.
class HeadlessAlerts : public Alerts {
public:
    // Those that were shown, the latest last.
    std::vector<Alert> shown;
    // The buttons chosen next; after them the last one of each alert.
    std::deque<std::size_t> answers;

    struct Progress {
        Alert alert;
        std::optional<double> fraction;
        std::function<void()> cancel;
        bool isShown = true;
    };
    std::vector<Progress> progress;

    std::size_t runModal(const Alert& alert) override {
        shown.push_back(alert);
        if (answers.empty())
            return alert.buttons.empty() ? 0 : alert.buttons.size() - 1;
        const auto answer = answers.front();
        answers.pop_front();
        return answer;
    }

    std::unique_ptr<ProgressWindow> showProgress(const Alert& alert,
                                                 std::function<void()> onCancel) override {
        progress.push_back({alert, std::nullopt, std::move(onCancel)});
        return std::make_unique<Shown>(progress, progress.size() - 1);
    }

private:
    class Shown : public ProgressWindow {
    public:
        Shown(std::vector<Progress>& all, std::size_t place) : list(all), index(place) {}
        ~Shown() override {
            list[index].isShown = false;
            list[index].cancel = nullptr;
        }
        void setFraction(std::optional<double> fraction) override { list[index].fraction = fraction; }

    private:
        std::vector<Progress>& list;
        std::size_t index;
    };
};

} // namespace platform::headless
