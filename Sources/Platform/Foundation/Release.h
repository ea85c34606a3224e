#pragma once

namespace platform {

// Calls the function by which a C library takes back what it handed out, for a std::unique_ptr.
template <auto release>
struct Release {
    template <typename Handle>
    void operator()(Handle* handle) const {
        release(handle);
    }
};

} // namespace platform
