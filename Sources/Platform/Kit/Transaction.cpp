#include "Platform/Kit/Transaction.h"

namespace platform {
namespace {

constinit const Transaction* innermostTransaction = nullptr;

} // namespace

Transaction::Transaction(Duration length, TimingFunction curve)
    : duration(length), timingFunction(curve), outer(innermostTransaction) {
    innermostTransaction = this;
}

Transaction::~Transaction() {
    innermostTransaction = outer;
}

const Transaction* Transaction::current() {
    return innermostTransaction;
}

} // namespace platform
