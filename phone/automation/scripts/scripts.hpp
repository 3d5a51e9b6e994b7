// The phone's own scripts: `phone: boot`, `phone: trace` and the rest, that WebDriver's clients send through execute/sync. They
// run in the phone's process, on its main thread, one at a time.
#pragma once

#include "objc/handle.hpp"
#include "phone/automation/error.hpp"
#include "phone/kernel/boot_options.hpp"

#include <string>
#include <vector>

namespace phone {

// JSON for the client; null when there is nothing to tell.
using ScriptResult = Answer<Json>;

// What scripts ask of the server that runs them.
class ScriptContext {
public:
    virtual ~ScriptContext() = default;

    // The view (or the application) behind an element's id. `no such element` for an id that was never given out, `stale element
    // reference` for one whose view is off the screen for good, or was a phone's before this one.
    virtual Answer<objc::handle> objectOfElement(std::string const& id) = 0;

    // Lets the phone's time pass: a manual clock is moved, with a running one this waits.
    virtual void passTime(double seconds) = 0;

    // What `phone: boot` without arguments boots: the command line's.
    virtual BootOptions const& usualBootOptions() const = 0;

    // A process holds one phone, so another one takes over once this script has been answered for; the client's answer waits for
    // it. boot: a fresh phone, which bootOptionsOf() makes of the arguments there again. When it does not come up, this phone
    // stays and the client gets the error. respring: the phone goes on in a new process (Phone::restartState).
    virtual void boot(Json const& arguments) = 0;
    virtual void respring() = 0;
};

// `name` without the prefix, as `enterPasscode`; `arguments` is what the client gave, an object. An unknown name: `unknown
// method`. Missing, unknown or wrongly typed arguments: `invalid argument` that names them, and nothing has changed.
ScriptResult runPhoneScript(std::string const& name, Json const& arguments, ScriptContext&);

// Every name that runPhoneScript knows, in the order of the documentation.
std::vector<std::string> phoneScriptNames();

// The arguments of `phone: boot` over `usual`, or `invalid argument`.
Answer<BootOptions> bootOptionsOf(Json const& arguments, BootOptions const& usual);

}
