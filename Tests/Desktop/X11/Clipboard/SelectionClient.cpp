#include "Desktop/X11/Clipboard/SelectionClient.h"

#include "Desktop/X11/Clipboard/SelectionProbe.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstring>
#include <deque>
#include <functional>
#include <map>
#include <thread>

#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xfixes.h>

namespace tests {
namespace {

using namespace platform::desktop;
using namespace std::chrono_literals;

// The forked program.
class Client {
public:
    explicit Client(const ClientScript& clientScript)
        : script(clientScript), window(makeWindow()), clipboard(x.atom("CLIPBOARD")) {
        if (script.owned)
            own(*script.owned);
        if (script.hasField)
            startApplication();
        if (script.fetchesEachChange || script.fillsEmpty || script.isManager)
            startManager();
        x.flush();
        // The server has carried out all of it before the test goes on.
        x.reply(xcb_get_input_focus_reply, xcb_get_input_focus(x));
    }

    xcb_window_t mainWindow() const { return window; }

    [[noreturn]] void run() {
        while (true) {
            if (waiting.empty())
                waiting.push_back(wait());
            // A toolkit with a queue of its own answers messages before keys that came earlier.
            if (script.pongsBeforeKeys) {
                while (Event event{xcb_poll_for_event(x)})
                    waiting.push_back(std::move(event));
                std::ranges::stable_partition(waiting, [&](const Event& event) { return isPing(event); });
            }
            auto event = std::move(waiting.front());
            waiting.pop_front();
            if (event)
                handle(event);
            x.flush();
        }
    }

private:
    xcb_window_t makeWindow() {
        auto made = xcb_generate_id(x);
        const std::uint32_t events[] = {XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_KEY_PRESS};
        xcb_create_window(x, XCB_COPY_FROM_PARENT, made, x.root(), 0, 0, 100, 100, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, events);
        return made;
    }

    void startApplication() {
        const std::uint32_t protocols[] = {x.atom("_NET_WM_PING")};
        if (script.speaksPing)
            x.setProperty(window, x.atom("WM_PROTOCOLS"), XCB_ATOM_ATOM, protocols);
        if (script.ownsPrimary)
            xcb_set_selection_owner(x, window, XCB_ATOM_PRIMARY, XCB_CURRENT_TIME);
        x.setProperty(window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, {"editor\0Editor\0", 14});
        const std::uint32_t process[] = {static_cast<std::uint32_t>(getpid())};
        x.setProperty(window, x.atom("_NET_WM_PID"), XCB_ATOM_CARDINAL, process);
        xcb_map_window(x, window);
    }

    void startManager() {
        xcb_xfixes_query_version(x, 1, 0);
        xcb_xfixes_select_selection_input(x, x.root(), clipboard,
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER);
        if (script.isManager)
            xcb_set_selection_owner(x, window, x.atom("CLIPBOARD_MANAGER"), XCB_CURRENT_TIME);
    }

    Event wait() {
        while (true) {
            if (Event event{xcb_poll_for_event(x)})
                return event;
            if (xcb_connection_has_error(x))
                _exit(0);
            if (pasteAt && *pasteAt <= std::chrono::steady_clock::now()) {
                paste();
                return {}; // More may be waiting now.
            }
            x.flush();
            pollfd source{xcb_get_file_descriptor(x), POLLIN, 0};
            poll(&source, 1, pasteAt ? 1 : -1);
        }
    }

    bool isPing(const Event& event) const {
        return kindOf(event) == XCB_CLIENT_MESSAGE
               && as<xcb_client_message_event_t>(event).type == x.atom("WM_PROTOCOLS");
    }

    void handle(const Event& event) {
        switch (kindOf(event)) {
        case XCB_CLIENT_MESSAGE:
            if (isPing(event))
                pong(as<xcb_client_message_event_t>(event));
            else if (as<xcb_client_message_event_t>(event).type == x.atom("TEST_FIELD"))
                setField(as<xcb_client_message_event_t>(event));
            return;
        case XCB_KEY_PRESS:
            press(as<xcb_key_press_event_t>(event));
            return;
        case XCB_SELECTION_REQUEST:
            answer(as<xcb_selection_request_event_t>(event));
            return;
        case XCB_PROPERTY_NOTIFY:
            nextPiece(as<xcb_property_notify_event_t>(event));
            return;
        case XCB_SELECTION_CLEAR:
            forms.clear();
            return;
        default:
            if ((script.fetchesEachChange || script.fillsEmpty) && isChange(event))
                lookAtClipboard();
        }
    }

    // As an application

    void pong(xcb_client_message_event_t message) {
        message.window = x.root();
        xcb_send_event(x, 0, x.root(),
                       XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                       reinterpret_cast<const char*>(&message));
    }

    void setField(const xcb_client_message_event_t& message) {
        text = x.property(window, x.atom("TEST_FIELD"), true)->bytes;
        busyBeforeKey = std::chrono::milliseconds(message.data.data32[0]);
        pasteDelay = std::chrono::milliseconds(message.data.data32[1]);
        const auto open = text.find('[');
        if (open == std::string::npos) {
            select(text.size(), text.size());
        } else {
            const auto close = text.find(']');
            text.erase(close, 1).erase(open, 1);
            select(open, close - 1);
        }
    }

    void press(const xcb_key_press_event_t& event) {
        // Places on an ordinary keyboard.
        static const std::map<int, char> letters{{38, 'a'}, {53, 'x'}, {54, 'c'}, {55, 'v'}, {114, '>'}};
        const auto pressed = letters.find(event.detail);
        if (pressed == letters.end())
            return;
        const auto arrival = std::chrono::steady_clock::now();
        std::this_thread::sleep_for(busyBeforeKey);
        const char letter = pressed->second;
        if (letter == '>') {
            select(to, to);
        } else if ((event.state & XCB_MOD_MASK_CONTROL) == 0) {
            insert({letter});
        } else if (letter == 'a') {
            select(0, text.size());
        } else if (letter == 'c' && from < to) {
            own(SelectionContent::of(text.substr(from, to - from)).forms);
        } else if (letter == 'v') {
            x.setProperty(window, x.atom("TEST_PASTE_KEY"), XCB_ATOM_STRING,
                          {reinterpret_cast<const char*>(&arrival), sizeof arrival});
            pasteAt = std::chrono::steady_clock::now() + pasteDelay;
            if (pasteDelay == 0ms)
                paste();
        }
    }

    void paste() {
        pasteAt.reset();
        auto own = std::ranges::find(forms, "UTF8_STRING", &SelectionForm::target);
        if (auto found = own != forms.end() ? std::optional(*own) : fetch("UTF8_STRING"))
            insert(found->bytes);
    }

    void insert(const std::string& typed) {
        text.replace(from, to - from, typed);
        select(from + typed.size(), from + typed.size());
    }

    void select(std::size_t start, std::size_t end) {
        from = start;
        to = end;
        auto shown = text;
        if (from < to)
            shown.insert(to, "]").insert(from, "[");
        x.setProperty(window, x.atom("TEST_TEXT"), XCB_ATOM_STRING, shown);
    }

    std::optional<SelectionForm> fetch(const std::string& target) {
        return fetchFrom(x, window, target, 0ms, [&](Event event) { waiting.push_back(std::move(event)); });
    }

    // As an owner

    void own(std::vector<SelectionForm> owned) {
        forms = std::move(owned);
        xcb_set_selection_owner(x, window, clipboard, XCB_CURRENT_TIME);
    }

    void answer(const xcb_selection_request_event_t& request) {
        if (script.neverAnswers)
            return;
        std::this_thread::sleep_for(script.answerDelay);
        bool given = request.selection == x.atom("CLIPBOARD_MANAGER") ? save() : give(request);
        xcb_selection_notify_event_t notice{};
        notice.response_type = XCB_SELECTION_NOTIFY;
        notice.requestor = request.requestor;
        notice.selection = request.selection;
        notice.target = request.target;
        notice.property = given ? request.property : xcb_atom_t{XCB_ATOM_NONE};
        notice.time = request.time;
        std::array<char, 32> bytes{};
        std::memcpy(bytes.data(), &notice, sizeof notice);
        xcb_send_event(x, 0, request.requestor, 0, bytes.data());
    }

    bool give(const xcb_selection_request_event_t& request) {
        auto name = x.nameOf(request.target);
        if (name == "TARGETS") {
            std::vector<std::uint32_t> targets{request.target, x.atom("TIMESTAMP")};
            for (const auto& form : forms)
                targets.push_back(x.atom(form.target));
            x.setProperty(request.requestor, request.property, XCB_ATOM_ATOM, targets);
            return true;
        }
        if (script.diesWhenAskedForData)
            _exit(0);
        auto form = std::ranges::find(forms, name, &SelectionForm::target);
        if (form == forms.end() || request.selection != clipboard)
            return false;
        if (script.pieceSize > 0 && form->bytes.size() > script.pieceSize) {
            const std::uint32_t events[] = {XCB_EVENT_MASK_PROPERTY_CHANGE};
            xcb_change_window_attributes(x, request.requestor, XCB_CW_EVENT_MASK, events);
            pieces = {*form, request.requestor, request.property, 0, 0};
            const std::uint32_t size[] = {static_cast<std::uint32_t>(form->bytes.size())};
            x.setProperty(request.requestor, request.property, x.atom("INCR"), size);
        } else {
            put(*form, request.requestor, request.property, form->bytes);
        }
        return true;
    }

    void put(const SelectionForm& form, xcb_window_t requestor, xcb_atom_t property, std::string_view bytes) {
        xcb_change_property(x, XCB_PROP_MODE_REPLACE, requestor, property, x.atom(form.type), form.format,
                            static_cast<std::uint32_t>(bytes.size() * 8 / form.format), bytes.data());
    }

    void nextPiece(const xcb_property_notify_event_t& change) {
        if (!pieces || change.window != pieces->requestor || change.atom != pieces->property
            || change.state != XCB_PROPERTY_DELETE || pieces->count++ >= script.stopsAfterPieces)
            return;
        auto piece = std::string_view(pieces->form.bytes).substr(pieces->sent, script.pieceSize);
        put(pieces->form, pieces->requestor, pieces->property, piece);
        pieces->sent += piece.size();
        if (piece.empty())
            pieces.reset();
    }

    // As a clipboard manager

    bool isChange(const Event& event) const {
        return kindOf(event)
               == xcb_get_extension_data(x, &xcb_xfixes_id)->first_event + XCB_XFIXES_SELECTION_NOTIFY;
    }

    void lookAtClipboard() {
        auto owner = x.reply(xcb_get_selection_owner_reply, xcb_get_selection_owner(x, clipboard));
        if (owner->owner == window)
            return;
        if (script.fetchesEachChange)
            fetch("UTF8_STRING");
        auto targets = script.fillsEmpty && owner->owner ? fetch("TARGETS") : std::nullopt;
        // Nothing but what every owner has: TARGETS, MULTIPLE, TIMESTAMP, SAVE_TARGETS.
        if (script.fillsEmpty && (!targets || targets->bytes.size() <= 4 * sizeof(xcb_atom_t)))
            own(SelectionContent::of(*script.fillsEmpty).forms);
    }

    bool save() {
        auto list = fetch("TARGETS");
        std::vector<SelectionForm> saved;
        XProperty targets{XCB_ATOM_ATOM, 32, list->bytes};
        for (auto target : targets.values()) {
            auto name = x.nameOf(target);
            if (name != "TARGETS" && name != "MULTIPLE" && name != "TIMESTAMP" && name != "SAVE_TARGETS")
                if (auto form = fetch(name))
                    saved.push_back(*form);
        }
        own(saved);
        return true;
    }

    struct Pieces {
        SelectionForm form;
        xcb_window_t requestor;
        xcb_atom_t property;
        std::size_t sent;
        std::size_t count;
    };

    ClientScript script;
    XConnection x;
    xcb_window_t window;
    xcb_atom_t clipboard;
    std::deque<Event> waiting;
    std::vector<SelectionForm> forms;
    std::optional<Pieces> pieces;
    std::string text;
    std::size_t from = 0;
    std::size_t to = 0;
    std::chrono::milliseconds busyBeforeKey{};
    std::chrono::milliseconds pasteDelay{};
    std::optional<std::chrono::steady_clock::time_point> pasteAt;
};

} // namespace

SelectionClient::SelectionClient(const ClientScript& script) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0)
        throw std::runtime_error("no pipe");
    process = fork();
    if (process == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        Client client(script);
        auto made = client.mainWindow();
        if (write(ends[1], &made, sizeof made) != sizeof made)
            _exit(1);
        client.run();
    }
    close(ends[1]);
    if (read(ends[0], &clientWindow, sizeof clientWindow) != sizeof clientWindow)
        throw std::runtime_error("the client did not start");
    close(ends[0]);
}

SelectionClient::~SelectionClient() {
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
}

} // namespace tests
