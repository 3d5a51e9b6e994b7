#include "phone/main/web_driver.hpp"

#include "phone/automation/automation_server.hpp"

#include <cstdlib>

namespace phone {

int serveWebDriver(ProgramOptions const& options)
{
    auto root = options.root ? DeviceRoot::openGiven(*options.root) : DeviceRoot::makeTemporary();
    if (!root) {
        reportProblem(root.message());
        return EXIT_FAILURE;
    }
    PhoneSetup setup;
    setup.boot = options.boot;
    setup.boot.clock = options.clock.value_or(ClockMode::running);
    setup.scriptClock = options.clock.value_or(ClockMode::manual);
    setup.addressBook = options.addressBook;
    setup.playsMusic = options.playsMusic;
    setup.orientation = options.orientation;
    setup.printsTrace = options.printsTrace;
    setup.opensWindow = !options.isHeadless;
    HttpOptions http;
    http.host = options.host;
    http.port = *options.webDriverPort;
    http.allowedOrigins = options.allowedOrigins;
    http.inspector = options.inspector;
    return runAutomationServer(setup, std::move(*root), http);
}

}
