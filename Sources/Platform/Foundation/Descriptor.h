#pragma once

#include <cerrno>
#include <string_view>
#include <unistd.h>

namespace platform::files {

// An open file by its number, closed at the end of its life.
class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (isOpen())
            ::close(number_);
    }

    bool isOpen() const { return number_ >= 0; }
    int number() const { return number_; }

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
