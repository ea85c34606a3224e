#include "Acceptance/Person.h"

#include <ranges>

namespace tests {

void Person::strike(std::initializer_list<Key> keys) {
    for (auto key : keys)
        press(key);
    for (auto key : std::views::reverse(keys))
        release(key);
}

Clock::time_point Person::change(Key key, bool isPress) {
    const auto now = Clock::now();
    keyboard.change(static_cast<int>(key), isPress);
    return now;
}

} // namespace tests
