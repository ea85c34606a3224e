#pragma once

namespace lumarin {

// Begins the log of this run; before anything else is logged.
void beginLog();

// Creates the application and runs it until it ends. Once, on the main thread.
void runApp();

} // namespace lumarin
