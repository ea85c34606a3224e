#include "Platform/Kit/AnimationContext.h"

#include "Platform/Host.h"
#include "Platform/Kit/Transaction.h"

#include <algorithm>
#include <utility>

namespace platform {
namespace {

constinit AnimationContext* innermostContext = nullptr;

// Makes a context the innermost one for as long as it lives.
class Group {
public:
    explicit Group(AnimationContext& context) : outer(std::exchange(innermostContext, &context)) {}
    ~Group() { innermostContext = outer; }
    Group(const Group&) = delete;
    Group& operator=(const Group&) = delete;

private:
    AnimationContext* const outer;
};

} // namespace

void AnimationContext::runAnimationGroup(const std::function<void(AnimationContext&)>& changes,
                                         std::function<void()> completion) {
    AnimationContext context;
    {
        const Group group(context);
        changes(context);
    }
    if (completion)
        Host::current().mainRunLoop().postAfter(context.longest, std::move(completion));
}

void AnimationContext::animate(const std::function<void()>& change) {
    AnimationContext plain;
    AnimationContext& context = innermostContext ? *innermostContext : plain;
    context.longest = std::max(context.longest, context.duration);
    const Transaction transaction(context.duration, context.timingFunction);
    change();
}

} // namespace platform
