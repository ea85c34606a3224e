#include "Platform/Kit/Transaction.h"

namespace platform {
namespace {

constinit const Transaction* innermost = nullptr;

} // namespace

Transaction::Transaction(Duration length, TimingFunction curve)
    : duration(length), timingFunction(curve), outer(innermost) {
    innermost = this;
}

Transaction::~Transaction() {
    innermost = outer;
}

const Transaction* Transaction::current() {
    return innermost;
}

} // namespace platform
