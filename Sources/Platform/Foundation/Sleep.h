#pragma once

#include "Platform/Foundation/Task.h"

namespace platform {

// Waits on the running task's executor; throws CancellationError as soon as the task is cancelled.
Task<void> sleep(Duration duration);

// The same for those to whom an interrupted wait is a finished one.
Task<void> sleepUnlessCancelled(Duration duration);

} // namespace platform
