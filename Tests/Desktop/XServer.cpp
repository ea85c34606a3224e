#include "Desktop/XServer.h"

#include <csignal>
#include <cstdlib>

namespace tests {

XServer::XServer(const std::string& options)
    // It says which number it has, and on the other stream that other numbers are taken.
    : process({"sh", "-c",
               "exec Xvfb -displayfd 1 -screen 0 1280x800x24 -nolisten tcp -noreset -ardelay 100 "
               "-arinterval 20 "
                   + options + " 2>/dev/null"},
              {}),
      display(":" + process.awaitLine("").text) {
    setenv("DISPLAY", display.c_str(), 1);
}

void XServer::end() {
    process.signal(SIGKILL);
    process.awaitEnd();
}

} // namespace tests
