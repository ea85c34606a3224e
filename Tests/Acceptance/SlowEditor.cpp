// A text field in a window of its own that can be slow: busy before it handles each key, or late in fetching
// what is pasted. It is told what to hold, and asked what it holds, by lines of JSON on its standard input
// and output.

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <iostream>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <poll.h>
#include <string>
#include <thread>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr std::size_t pieceSize = 65536;

class SlowEditor {
public:
    SlowEditor();
    ~SlowEditor() { XCloseDisplay(display); }
    SlowEditor(const SlowEditor&) = delete;
    SlowEditor& operator=(const SlowEditor&) = delete;

    void run();

private:
    struct Outgoing {
        Atom property;
        std::string rest;
    };

    Atom atom(const char* name) const { return XInternAtom(display, name, False); }
    void handle(XEvent& event);
    void handleKey(XKeyEvent& event);
    void handleCommand(const std::string& line);
    void select(std::size_t from, std::size_t to);
    void insert(const std::string& typed);
    void copy(Time time);
    void answer(const XSelectionRequestEvent& request);
    void sendPiece(Window requestor, Outgoing& outgoing);
    void fetch(Time time);
    std::string takeProperty(Atom& type);
    void receive(const XSelectionEvent& event);
    void receivePiece();

    Display* display;
    Window window = 0;
    std::string text;
    std::size_t selectionStart = 0;
    std::size_t selectionEnd = 0;
    std::string copied;
    std::map<Window, Outgoing> outgoings;
    std::chrono::milliseconds keyDelay{};
    std::chrono::milliseconds fetchDelay{};
    std::optional<Clock::time_point> fetchTime;
    bool isFetching = false;
    std::optional<std::string> incoming;
    Clock::time_point pasteKeyTime;
    std::string commands;
};

SlowEditor::SlowEditor() : display(XOpenDisplay(nullptr)) {
    if (!display)
        throw std::runtime_error("no display");
    // Who asked for the clipboard may have gone by the time of the answer.
    XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
    window = XCreateSimpleWindow(display, DefaultRootWindow(display), 100, 100, 600, 300, 1, 0, 0xFFFFFF);
    std::string name = "slow-editor";
    XClassHint hint{name.data(), name.data()};
    XSetClassHint(display, window, &hint);
    XStoreName(display, window, name.c_str());
    Atom ping = atom("_NET_WM_PING");
    XSetWMProtocols(display, window, &ping, 1);
    const long process = getpid();
    XChangeProperty(display, window, atom("_NET_WM_PID"), XA_CARDINAL, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(&process), 1);
    std::array<char, 256> host{};
    gethostname(host.data(), host.size() - 1);
    XChangeProperty(display, window, XA_WM_CLIENT_MACHINE, XA_STRING, 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(host.data()),
                    static_cast<int>(std::strlen(host.data())));
    XSelectInput(display, window, KeyPressMask | PropertyChangeMask | FocusChangeMask);
    XMapRaised(display, window);
}

void SlowEditor::run() {
    for (;;) {
        while (XPending(display) > 0) {
            XEvent event;
            XNextEvent(display, &event);
            handle(event);
        }
        if (fetchTime && Clock::now() >= *fetchTime) {
            fetchTime.reset();
            fetch(CurrentTime);
        }
        XSync(display, False);
        if (XPending(display) > 0)
            continue;
        // A command waits until all that was asked of the editor before is done.
        const bool takesCommands = !fetchTime && !isFetching;
        if (const auto end = commands.find('\n'); takesCommands && end != std::string::npos) {
            handleCommand(commands.substr(0, end));
            commands.erase(0, end + 1);
            continue;
        }
        std::array<pollfd, 2> waits{pollfd{ConnectionNumber(display), POLLIN, 0},
                                    pollfd{STDIN_FILENO, POLLIN, 0}};
        poll(waits.data(), takesCommands ? 2 : 1, fetchTime ? 5 : -1);
        if (waits[1].revents != 0) {
            std::array<char, 65536> buffer{};
            const auto count = read(STDIN_FILENO, buffer.data(), buffer.size());
            if (count <= 0)
                return;
            commands.append(buffer.data(), static_cast<std::size_t>(count));
        }
    }
}

void SlowEditor::handle(XEvent& event) {
    switch (event.type) {
    case KeyPress:
        handleKey(event.xkey);
        break;
    case ClientMessage:
        if (static_cast<Atom>(event.xclient.data.l[0]) == atom("_NET_WM_PING")) {
            event.xclient.window = DefaultRootWindow(display);
            XSendEvent(display, event.xclient.window, False,
                       SubstructureNotifyMask | SubstructureRedirectMask, &event);
        }
        break;
    case SelectionRequest:
        answer(event.xselectionrequest);
        break;
    case SelectionNotify:
        receive(event.xselection);
        break;
    case PropertyNotify:
        if (event.xproperty.window == window && event.xproperty.state == PropertyNewValue && incoming)
            receivePiece();
        if (auto found = outgoings.find(event.xproperty.window);
            found != outgoings.end() && event.xproperty.state == PropertyDelete)
            sendPiece(found->first, found->second);
        break;
    default:
        break;
    }
}

void SlowEditor::handleKey(XKeyEvent& event) {
    KeySym symbol = NoSymbol;
    std::array<char, 16> typed{};
    const int length = XLookupString(&event, typed.data(), typed.size(), &symbol, nullptr);
    if (IsModifierKey(symbol))
        return;
    const auto arrival = Clock::now();
    std::this_thread::sleep_for(keyDelay);
    if (symbol == XK_Right) {
        const auto caret =
            selectionStart == selectionEnd ? std::min(text.size(), selectionEnd + 1) : selectionEnd;
        select(caret, caret);
    } else if ((event.state & ControlMask) == 0) {
        if (length > 0)
            insert({typed.data(), static_cast<std::size_t>(length)});
    } else if (symbol == XK_a || symbol == XK_A) {
        select(0, text.size());
    } else if (symbol == XK_c || symbol == XK_C) {
        copy(event.time);
    } else if (symbol == XK_v || symbol == XK_V) {
        pasteKeyTime = arrival;
        if (fetchDelay > 0ms)
            fetchTime = Clock::now() + fetchDelay;
        else
            fetch(event.time);
    }
}

void SlowEditor::handleCommand(const std::string& line) {
    const auto command = nlohmann::json::parse(line);
    if (command.contains("text")) {
        text = command["text"];
        select(command["from"], command["to"]);
        keyDelay = std::chrono::milliseconds(command["keyDelay"].get<int>());
        fetchDelay = std::chrono::milliseconds(command["fetchDelay"].get<int>());
    }
    nlohmann::json report{{"text", text},
                          {"from", selectionStart},
                          {"to", selectionEnd},
                          {"pasteKeyTime", pasteKeyTime.time_since_epoch().count()}};
    std::cout << report.dump() << std::endl;
}

void SlowEditor::select(std::size_t from, std::size_t to) {
    selectionStart = from;
    selectionEnd = to;
}

void SlowEditor::insert(const std::string& typed) {
    text.replace(selectionStart, selectionEnd - selectionStart, typed);
    select(selectionStart + typed.size(), selectionStart + typed.size());
}

void SlowEditor::copy(Time time) {
    if (selectionStart == selectionEnd)
        return;
    copied = text.substr(selectionStart, selectionEnd - selectionStart);
    XSetSelectionOwner(display, atom("CLIPBOARD"), window, time);
}

void SlowEditor::answer(const XSelectionRequestEvent& request) {
    XEvent notify{};
    notify.xselection.type = SelectionNotify;
    notify.xselection.requestor = request.requestor;
    notify.xselection.selection = request.selection;
    notify.xselection.target = request.target;
    notify.xselection.property = request.property;
    notify.xselection.time = request.time;
    if (request.target == atom("TARGETS")) {
        std::array<Atom, 2> targets{atom("TARGETS"), atom("UTF8_STRING")};
        XChangeProperty(display, request.requestor, request.property, XA_ATOM, 32, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(targets.data()),
                        static_cast<int>(targets.size()));
    } else if (request.target != atom("UTF8_STRING")) {
        notify.xselection.property = None;
    } else if (copied.size() <= pieceSize) {
        XChangeProperty(display, request.requestor, request.property, request.target, 8, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(copied.data()),
                        static_cast<int>(copied.size()));
    } else {
        outgoings[request.requestor] = {request.property, copied};
        XSelectInput(display, request.requestor, PropertyChangeMask);
        const long size = static_cast<long>(copied.size());
        XChangeProperty(display, request.requestor, request.property, atom("INCR"), 32, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(&size), 1);
    }
    XSendEvent(display, request.requestor, False, NoEventMask, &notify);
}

void SlowEditor::sendPiece(Window requestor, Outgoing& outgoing) {
    const auto piece = outgoing.rest.substr(0, pieceSize);
    outgoing.rest.erase(0, piece.size());
    XChangeProperty(display, requestor, outgoing.property, atom("UTF8_STRING"), 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(piece.data()), static_cast<int>(piece.size()));
    if (piece.empty())
        outgoings.erase(requestor);
}

void SlowEditor::fetch(Time time) {
    isFetching = true;
    XConvertSelection(display, atom("CLIPBOARD"), atom("UTF8_STRING"), atom("PASTE"), window, time);
}

std::string SlowEditor::takeProperty(Atom& type) {
    int format = 0;
    unsigned long count = 0;
    unsigned long rest = 0;
    unsigned char* bytes = nullptr;
    XGetWindowProperty(display, window, atom("PASTE"), 0, 0x1FFFFFFF, True, AnyPropertyType, &type, &format,
                       &count, &rest, &bytes);
    std::string result(reinterpret_cast<const char*>(bytes), format == 8 ? count : 0);
    XFree(bytes);
    return result;
}

void SlowEditor::receive(const XSelectionEvent& event) {
    isFetching = false;
    if (event.property == None)
        return;
    Atom type = None;
    auto pasted = takeProperty(type);
    if (type == atom("INCR")) {
        isFetching = true;
        incoming = "";
    } else {
        insert(pasted);
    }
}

void SlowEditor::receivePiece() {
    Atom type = None;
    auto piece = takeProperty(type);
    if (!piece.empty()) {
        *incoming += piece;
        return;
    }
    insert(*incoming);
    incoming.reset();
    isFetching = false;
}

} // namespace

int main() {
    try {
        SlowEditor().run();
    } catch (const std::exception& error) {
        std::cerr << "SlowEditor: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
