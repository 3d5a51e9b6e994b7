#include "phone/kernel/macho/apple_symbols.hpp"

#include "objc/abi.hpp"
#include "phone/kernel/file.hpp"
#include "phone/kernel/macho/authentication.hpp"

#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

extern "C" {
IMP objc_msg_lookup(id receiver, SEL selector);

// message_send.S
void corvel_apple_objc_msgSend();
void corvel_apple_class_addMethod();
void corvel_apple_CFNotificationCenterAddObserver();
void* corvel_apple_incoming_code(void* code, char const* what);
IMP corvel_apple_message_lookup(id receiver, SEL selector, void const* returnAddress);

// Substrate's part, which the phone's executable has.
void MSHookMessageEx(Class cls, SEL selector, IMP replacement, IMP* original);
}

// What the library gives away is authenticated, and answered plain.
void* corvel_apple_incoming_code(void* code, char const* what)
{
    return phone::authenticatedCode(code, 0, what);
}

// Where the library's last message returns to. A message that ends one of its functions is a jump, and returns to whoever called
// the function: an address of the phone's, behind which the library would not be seen.
static void const* g_messageReturnsTo = nullptr;

IMP corvel_apple_message_lookup(id receiver, SEL selector, void const* returnAddress)
{
    IMP const implementation = objc_msg_lookup(receiver, selector);
    g_messageReturnsTo = returnAddress;   // after the look-up, in which a class may be initialised
    return implementation;
}

namespace phone {
namespace {

template <class F>
F* comingIn(F* code, char const* what)
{
    return reinterpret_cast<F*>(authenticatedCode(reinterpret_cast<void*>(code), 0, what));
}
template <class F>
F* goingOut(F* code)
{
    return reinterpret_cast<F*>(signedCode(reinterpret_cast<void*>(code), 0));
}

// A symbol that the phone's executable has, or a library; looked up late, so that this file can be linked without a phone.
template <class F>
F* real(char const* name)
{
    auto* const function = reinterpret_cast<F*>(dlsym(RTLD_DEFAULT, name));
    if (!function) {
        std::fprintf(stderr, "corvel-phone: %s is called and nobody has it\n", name);
        std::abort();
    }
    return function;
}

IMP methodImplementation(Class cls, SEL selector)
{
    return goingOut(class_getMethodImplementation(cls, selector));
}

void hookMessage(Class cls, SEL selector, IMP replacement, IMP* original)
{
    IMP previous = nullptr;
    // The slot is the library's: what the phone stores there has to be signed, and what it reads back is not.
    real<decltype(MSHookMessageEx)>("MSHookMessageEx")(
        cls, selector, comingIn(replacement, "a replacement"), original ? &previous : nullptr);
    if (original && previous)
        *original = goingOut(previous);
}

int atExit(void (*function)()) { return std::atexit(comingIn(function, "a function for the end")); }

// GNUstep has it as an inline function.
Class classOf(id object) { return object ? *reinterpret_cast<Class*>(object) : nullptr; }

// dyld's, for lazy binding; all is bound at once here, and nothing calls it.
void bindLazily() { std::abort(); }

struct Symbol {
    char const* name;
    void (*function)();
};
template <class F>
Symbol row(char const* name, F* function)
{
    return { name, reinterpret_cast<void (*)()>(function) };
}
Symbol const kSymbols[] = {
    row("_objc_msgSend", corvel_apple_objc_msgSend),
    row("_object_getClass", classOf),
    row("_class_addMethod", corvel_apple_class_addMethod),
    row("_class_getMethodImplementation", methodImplementation),
    row("_MSHookMessageEx", hookMessage),
    row("_CFNotificationCenterAddObserver", corvel_apple_CFNotificationCenterAddObserver),
    row("_atexit", atExit),
    row("dyld_stub_binder", bindLazily),
};

std::vector<std::unique_ptr<MachOLibrary>>& libraries()
{
    static std::vector<std::unique_ptr<MachOLibrary>> loaded;
    return loaded;
}

}

void* appleSymbol(MachOImport const& import)
{
    for (Symbol const& symbol : kSymbols) {
        if (import.name == symbol.name)
            return reinterpret_cast<void*>(symbol.function);
    }
    return import.name.starts_with('_') ? dlsym(RTLD_DEFAULT, import.name.c_str() + 1) : nullptr;
}

Result<MachOLibrary*> loadAppleLibrary(std::filesystem::path const& path, MachOArchitecture architecture)
{
    auto const named = [&](std::string const& problem) { return Error { path.string() + ": " + problem }; };
    if ((architecture == MachOArchitecture::arm64e) != isAuthenticating())
        return named("the phone does not authenticate pointers as this slice wants");
    auto const file = readFile(path);
    if (!file)
        return file.error();
    auto image = parseMachO(*file, architecture);
    if (!image)
        return named(image.message());
    auto library = MachOLibrary::map(*file, std::move(image).value(), appleSymbol);
    if (!library)
        return named(library.message());
    libraries().push_back(std::move(library).value());
    MachOLibrary* const loaded = libraries().back().get();
    if (auto const started = loaded->runInitialisers(); !started)
        return named(started.message());
    return loaded;
}

bool isAppleLibraryAddress(void const* address)
{
    if (address == g_messageReturnsTo)
        return true;
    return std::any_of(
        libraries().begin(), libraries().end(), [&](auto const& library) { return library->holds(address); });
}

}
