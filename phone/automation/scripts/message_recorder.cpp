#include "phone/automation/scripts/message_recorder.hpp"

#include "phone/automation/scripts/value_types.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/kernel/services.hpp"
#include "phone/phone.hpp"
#include "phone/springboard/message_lookup.hpp"
#include "phone/springboard/object_values.hpp"

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <thread>
#include <unordered_map>

extern "C" char const* method_getTypeEncoding(Method method);

namespace phone {

namespace {

constexpr std::array<std::string_view, 7> kMemoryMessages { "retain", "release", "autorelease", "retainCount",
    "dealloc", ".cxx_destruct", ".cxx_construct" };

// A function that records a message and calls what it stands for. Kept for good: somebody may be about to call it.
struct Recorder {
    IMP implementation { nullptr };
    SEL selector { nullptr };
    MethodTypes types;
    ffi_cif call {};
    std::vector<ffi_type*> wires;
    ffi_closure* closure { nullptr };
    void* code { nullptr };
};

struct Recording {
    std::thread::id mainThread;
    bool isBusy { false };   // writing an event, which sends messages of its own
    std::vector<Class> classes;
    std::unordered_map<Class, bool> isChosen;   // by the object's class
    std::map<std::pair<IMP, std::string>, std::unique_ptr<Recorder>> recorders;
};

Recording& recording()
{
    static auto& theRecording = *new Recording;
    return theRecording;
}

bool isChosen(Class cls)
{
    auto& known = recording().isChosen;
    if (auto const row = known.find(cls); row != known.end())
        return row->second;
    bool chosen = false;
    for (Class each = cls; each && !chosen; each = class_getSuperclass(each))
        chosen = std::ranges::find(recording().classes, each) != recording().classes.end();
    known.emplace(cls, chosen);
    return chosen;
}

void recordAndCall(ffi_cif* call, void* result, void** values, void* data)
{
    Recorder const& recorder = *static_cast<Recorder const*>(data);
    std::size_t n = 0;
    recording().isBusy = true;
    {
        AutoreleasePool const pool;
        Json arguments = Json::array();
        for (std::size_t i = 0; i < recorder.types.arguments.size(); ++i)
            arguments.push_back(readValue(*recorder.types.arguments[i], values[i + 2]));
        n = trace().begin("message",
            { { "target", objectValue(objc::handle { *static_cast<id*>(values[0]) }) },
                { "selector", sel_getName(recorder.selector) }, { "arguments", std::move(arguments) },
                { "result", nullptr } });
    }
    recording().isBusy = false;
    ffi_call(call, recorder.implementation, result, values);
    recording().isBusy = true;
    {
        AutoreleasePool const pool;
        trace().finish(n, "result", readResult(*recorder.types.result, result));
    }
    recording().isBusy = false;
}

Recorder* makeRecorder(Class cls, SEL selector, IMP implementation)
{
    Method const method = class_getInstanceMethod(cls, selector);
    char const* const encoding = method ? method_getTypeEncoding(method) : nullptr;
    auto types = methodTypes(encoding ? encoding : "");
    if (!types)
        return nullptr;
    auto recorder = std::make_unique<Recorder>();
    recorder->implementation = implementation;
    recorder->selector = selector;
    recorder->types = std::move(*types);
    recorder->wires = { &ffi_type_pointer, &ffi_type_pointer };
    for (ValueType const* const argument : recorder->types.arguments)
        recorder->wires.push_back(argument->wire);
    auto const count = static_cast<unsigned>(recorder->wires.size());
    recorder->closure = static_cast<ffi_closure*>(ffi_closure_alloc(sizeof(ffi_closure), &recorder->code));
    bool const isMade = recorder->closure
        && ffi_prep_cif(
               &recorder->call, FFI_DEFAULT_ABI, count, recorder->types.result->wire, recorder->wires.data())
            == FFI_OK
        && ffi_prep_closure_loc(
               recorder->closure, &recorder->call, recordAndCall, recorder.get(), recorder->code)
            == FFI_OK;
    if (!isMade)
        return nullptr;
    auto& place = recording().recorders[{ implementation, sel_getName(selector) }];
    place = std::move(recorder);
    return place.get();
}

IMP intercept(id receiver, SEL selector, IMP found, void const*)
{
    Recording& state = recording();
    if (state.isBusy || std::this_thread::get_id() != state.mainThread)
        return found;
    Class const cls = objc::boundary::class_of(receiver);
    if (!isChosen(cls))
        return found;
    std::string const name = sel_getName(selector);
    if (std::ranges::find(kMemoryMessages, name) != kMemoryMessages.end())
        return found;
    auto const row = state.recorders.find({ found, name });
    Recorder const* const recorder =
        row != state.recorders.end() ? row->second.get() : makeRecorder(cls, selector, found);
    return recorder ? reinterpret_cast<IMP>(recorder->code) : found;
}

}

Status recordMessages(bool strips, std::vector<std::string> const& classes)
{
    std::vector<Class> chosen;
    for (std::string const& name : classes) {
        Class const cls = objc_getClass(name.c_str());
        if (!cls)
            return Error { "there is no class " + name };
        chosen.push_back(cls);
    }
    if (strips) {
        if (Class const strip = objc_getClass("CVLView"))
            chosen.push_back(strip);
        if (objc::handle const host = phone().adjunctController())
            chosen.push_back(objc::boundary::class_of(host.object));
    }
    setMessageInterceptor(nullptr);
    recording().mainThread = std::this_thread::get_id();
    recording().classes = std::move(chosen);
    recording().isChosen.clear();
    if (!recording().classes.empty())
        setMessageInterceptor(&intercept);
    return {};
}

}
