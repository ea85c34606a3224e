#include "Platform/Updates/StandardUpdaterController.h"

#include "Platform/Foundation/Text.h"
#include "Platform/Host.h"
#include "Platform/Updates/PackageDownload.h"
#include "Platform/Updates/UpdateError.h"
#include "Platform/Updates/UpdateProgress.h"
#include "Platform/Updates/UpdateSource.h"

namespace platform {

using namespace std::chrono_literals;

namespace {

// A check that is answered sooner needs no window of its own.
constexpr auto patience = 500ms;

} // namespace

// One check and what follows from it, kept alive by the task that does it.
class StandardUpdaterController::Check {
public:
    Check(std::weak_ptr<UpdaterDelegate> updaterDelegate, Texts localized)
        : delegate(std::move(updaterDelegate)), texts(std::move(localized)) {}

    static void begin(const std::shared_ptr<Check>& check) {
        check->task.emplace(spawn(Host::current().mainRunLoop(), run(check)));
    }

    // The program is about to end, possibly before the task gets to clean up.
    void abandon() {
        task->cancel();
        if (auto file = incoming.lock())
            file->discard();
    }

private:
    static Task<void> run(std::shared_ptr<Check> self) {
        const auto item = co_await self->find(self);
        if (item && self->offer(*item))
            co_await self->download(self, *item);
    }

    // Whatever comes of it has been told to the delegate; what is not found, to the person as well.
    Task<std::optional<AppcastItem>> find(std::shared_ptr<Check> self) {
        std::optional<AppcastItem> item;
        Alert alert;
        try {
            source.emplace(UpdateSource::current());
            session = Host::current().makeHTTPSession({});
            const auto progress = showProgress(self, "updates.checking", {}, patience);
            auto newest = co_await findUpdate(*source, session, texts.text("updates.language"));
            co_await checkCancellation();
            item = std::move(newest);
        } catch (const CancellationError&) {
            throw;
        } catch (const NoUpdate& none) {
            alert = {Alert::Style::informational,
                     texts.text(none.key + ".title"),
                     sentence(none.key + ".body", none),
                     {texts.text("updates.close")}};
        } catch (const UpdateError& error) {
            alert = failure("updates.error.check", sentence(error.key, error));
        } catch (const std::exception& error) {
            alert = failure("updates.error.check", filled("updates.error.feed", texts.description(error)));
        }
        if (auto told = delegate.lock()) {
            if (item)
                told->updaterDidFindValidUpdate(*item);
            else
                told->updaterDidNotFindUpdate(alert.informativeText);
        }
        if (!item)
            show(alert);
        co_return item;
    }

    bool offer(const AppcastItem& item) {
        Alert alert;
        alert.messageText = filled("updates.found.title", item.displayVersionString);
        alert.informativeText = filled("updates.found.body", source->displayVersion);
        if (!item.releaseNotes.empty())
            alert.informativeText += "\n\n" + texts.text("updates.found.notes") + "\n" + item.releaseNotes;
        else if (!item.releaseNotesURL.empty())
            alert.informativeText += "\n\n" + texts.text("updates.found.notes") + "\n" + item.releaseNotesURL;
        alert.buttons = {texts.text("updates.found.download"), texts.text("updates.found.later")};
        return show(alert) == 0;
    }

    Task<void> download(std::shared_ptr<Check> self, AppcastItem item) {
        std::optional<Alert> alert;
        try {
            const auto progress =
                showProgress(self, "updates.downloading", item.displayVersionString, Duration::zero());
            const auto file = co_await makeFile(packageFileName(item));
            incoming = file;
            co_await downloadPackage(item, source->publicKey, session, file, progress.fractionSetter());
            co_await checkCancellation();
            const auto path = co_await keep(file);
            Host::current().workspace().reveal(path);
        } catch (const CancellationError&) {
            throw;
        } catch (const UpdateError& error) {
            alert = failure("updates.error.download", sentence(error.key, error));
        } catch (const std::system_error& error) {
            alert = failure("updates.error.download", filled("updates.error.file", texts.description(error)));
        } catch (const std::exception& error) {
            alert =
                failure("updates.error.download", filled("updates.error.package", texts.description(error)));
        }
        if (alert)
            show(*alert);
    }

    static Task<std::shared_ptr<IncomingFile>> makeFile(std::string name) {
        co_await resumeOn(Host::current().backgroundExecutor());
        co_return std::make_shared<IncomingFile>(Host::current().directories().downloads, name);
    }

    static Task<std::filesystem::path> keep(std::shared_ptr<IncomingFile> file) {
        co_await resumeOn(Host::current().backgroundExecutor());
        co_return file->keep();
    }

    UpdateProgress showProgress(const std::shared_ptr<Check>& self, const std::string& key,
                                const std::string& argument, Duration delay) {
        return UpdateProgress(
            {Alert::Style::informational, filled(key, argument), {}, {texts.text("updates.cancel")}}, delay,
            [weak = std::weak_ptr(self)] {
                if (auto check = weak.lock())
                    check->task->cancel();
            });
    }

    Alert failure(const std::string& titleKey, const std::string& reason) const {
        return {Alert::Style::warning, texts.text(titleKey), reason, {texts.text("updates.close")}};
    }

    static std::size_t show(const Alert& alert) {
        Host::current().activate();
        return Host::current().alerts().runModal(alert);
    }

    std::string filled(const std::string& key, std::string_view argument) const {
        return text::format(texts.text(key), {argument});
    }

    std::string sentence(const std::string& key, const UpdateError& error) const {
        return text::format(texts.text(key), {error.argument});
    }

    const std::weak_ptr<UpdaterDelegate> delegate;
    const Texts texts;
    std::optional<UpdateSource> source;
    std::shared_ptr<HTTPSession> session;
    std::weak_ptr<IncomingFile> incoming;
    std::optional<TaskHandle> task;
};

StandardUpdaterController::StandardUpdaterController(std::weak_ptr<UpdaterDelegate> updaterDelegate,
                                                     Texts localized)
    : delegate(std::move(updaterDelegate)), texts(std::move(localized)) {}

StandardUpdaterController::~StandardUpdaterController() {
    if (auto check = underWay.lock())
        check->abandon();
}

void StandardUpdaterController::checkForUpdates() {
    if (!underWay.expired())
        return Host::current().activate();
    auto check = std::make_shared<Check>(delegate, texts);
    underWay = check;
    Check::begin(check);
}

} // namespace platform
