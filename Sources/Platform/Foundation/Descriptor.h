#pragma once

#include <cerrno>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace platform::files {

// An open file by its number, closed at the end of its life; negative when there is none.
class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(other.release()) {}
    Descriptor& operator=(Descriptor&&) = delete;
    ~Descriptor() { close(); }

    bool isOpen() const { return number_ >= 0; }
    int number() const { return number_; }
    int release() { return std::exchange(number_, -1); }
    void close() {
        if (isOpen())
            ::close(release());
    }

private:
    int number_;
};

// Does it again for as long as a signal interrupts it.
template <typename Operation>
ssize_t uninterrupted(const Operation& operation) {
    ssize_t result = operation();
    while (result < 0 && errno == EINTR)
        result = operation();
    return result;
}

// False, with errno set, when not all of it could be written.
inline bool writeAll(const Descriptor& file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written =
            uninterrupted([&] { return ::write(file.number(), bytes.data(), bytes.size()); });
        if (written < 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

} // namespace platform::files
