#pragma once

#include "Platform/Foundation/Executor.h"
#include "Platform/Kit/TimingFunction.h"

namespace platform {

// While it lives, a layer's property that is set moves from what is shown to its new value, over the duration
// and along the curve. Within another one it takes that one's place. With actions disabled, or without any
// transaction, a change shows at once. Main thread.
class Transaction {
public:
    explicit Transaction(Duration duration, TimingFunction timingFunction = TimingFunction::defaultCurve());
    static Transaction withActionsDisabled() { return Transaction(Duration::zero()); }
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    // The innermost one, or null.
    static const Transaction* current();

    const Duration duration;
    const TimingFunction timingFunction;

private:
    const Transaction* const outer;
};

} // namespace platform
