#include "phone/automation/scripts/message_call.hpp"

#include "phone/automation/scripts/value_types.hpp"
#include "phone/foundation/method_replacement.hpp"
#include "phone/foundation/plugin_call.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/springboard/object_values.hpp"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <memory>
#include <set>

extern "C" {
Method* class_copyMethodList(Class cls, unsigned* count);
SEL method_getName(Method method);
char const* method_getTypeEncoding(Method method);
char const* ivar_getTypeEncoding(Ivar ivar);
void free(void* memory);
}

namespace phone {

namespace {

// What the last exception said: a foreign exception cannot be asked once it is caught.
std::string& lastReason()
{
    static auto& reason = *new std::string;
    return reason;
}

Replaced<void(id, SEL)> g_raise;

void noteReasonAndRaise(id self, SEL cmd)
{
    objc::handle const exception { self };
    lastReason() = toString(exception.send<"name", NSString>());
    if (auto const reason = toString(exception.send<"reason", NSString>()); !reason.empty())
        lastReason() += ": " + reason;
    g_raise(self, cmd);
}

void watchExceptions()
{
    static bool isWatching = false;
    if (std::exchange(isWatching, true))
        return;
    replace<"raise">("NSException", &noteReasonAndRaise, g_raise);
}

// Room for one value, aligned for any type. libffi writes results narrower than a register as whole registers.
class Slot {
public:
    explicit Slot(ValueType const& type)
        : m_words(std::max<std::size_t>((type.size + 15) / 16, 1))
    {
    }
    void* bytes() { return m_words.data(); }

private:
    struct alignas(16) Word {
        unsigned char bytes[16] {};
    };
    std::vector<Word> m_words;
};

// Does the method hand its result over, by its name? (`new`, `newThing`, not `newton`.)
bool handsOver(std::string const& selector)
{
    std::size_t const start = selector.find_first_not_of('_');
    for (std::string_view const family : { "alloc", "new", "copy", "mutableCopy" }) {
        if (start == selector.npos || selector.compare(start, family.size(), family) != 0)
            continue;
        std::size_t const end = start + family.size();
        if (end == selector.size() || !std::islower(static_cast<unsigned char>(selector[end])))
            return true;
    }
    return false;
}

CallResult perform(objc::handle target, SEL selector, MethodTypes const& types, Json const& arguments)
{
    std::vector<Slot> slots;
    slots.reserve(types.arguments.size());
    for (std::size_t i = 0; i < types.arguments.size(); ++i) {
        Slot& slot = slots.emplace_back(*types.arguments[i]);
        auto const written = writeValue(
            *types.arguments[i], arguments[i], slot.bytes(), "arguments[" + std::to_string(i) + "]");
        if (!written)
            return CallResult::refused(written.message());
    }

    std::vector<ffi_type*> wires { &ffi_type_pointer, &ffi_type_pointer };
    id receiver = target.object;
    std::vector<void*> values { &receiver, &selector };
    for (std::size_t i = 0; i < slots.size(); ++i) {
        wires.push_back(types.arguments[i]->wire);
        values.push_back(slots[i].bytes());
    }
    ffi_cif call;
    if (ffi_prep_cif(
            &call, FFI_DEFAULT_ABI, static_cast<unsigned>(wires.size()), types.result->wire, wires.data())
        != FFI_OK)
        return CallResult::refused("the method's types cannot be passed");

    Slot result(*types.result);
    watchExceptions();
    lastReason().clear();
    IMP const code = objc::boundary::message_implementation(target.object, selector);
    try {
        CalloutScope const scope(target, selector);
        ffi_call(&call, code, result.bytes(), values.data());
    } catch (...) {
        std::string const reason = lastReason().empty() ? "an exception" : lastReason();
        return { {}, false,
            { CallProblem::Kind::raised, std::string(sel_getName(selector)) + " raised " + reason } };
    }
    CallResult answer { readResult(*types.result, result.bytes()) };
    if (types.result->code == '@' && handsOver(sel_getName(selector))) {
        objc::handle const owned { *static_cast<id*>(result.bytes()) };
        owned.send<"autorelease">();
    }
    return answer;
}

std::string listed(std::vector<std::string> const& names)
{
    std::string text;
    for (std::string const& name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text;
}

CallResult sendTo(objc::handle target, SEL selector, Json const& arguments)
{
    Class const cls = objc::boundary::class_of(target.object);
    Method const method = class_getInstanceMethod(cls, selector);
    char const* const encoding = method ? method_getTypeEncoding(method) : nullptr;
    auto const types = methodTypes(encoding ? encoding : "");
    if (!types)
        return CallResult::refused(std::string(sel_getName(selector)) + ": " + types.message());
    if (arguments.size() != types->arguments.size())
        return CallResult::refused(std::string(sel_getName(selector)) + " takes "
            + std::to_string(types->arguments.size()) + " arguments, not "
            + std::to_string(arguments.size()));
    return perform(target, selector, *types, arguments);
}

// How key-value coding looks for a key among methods and instance variables.
std::vector<std::string> getters(std::string const& key)
{
    std::string capital = key;
    capital[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(capital[0])));
    return { "get" + capital, key, "is" + capital, "_" + key };
}
std::vector<std::string> variables(std::string const& key)
{
    std::string capital = key;
    capital[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(capital[0])));
    return { "_" + key, "_is" + capital, key, "is" + capital };
}

bool isCollection(objc::handle target)
{
    return objc::cast<NSArray>(target) || objc::cast<NSSet>(target) || objc::cast<NSDictionary>(target);
}

// One key. The object itself, when it is one, comes back too, for the rest of a path.
CallResult valueOfOneKey(objc::handle target, std::string const& key, objc::handle& object)
{
    std::string const who = classNameOf(target);
    Class const cls = objc::boundary::class_of(target.object);
    if (isCollection(target)) {
        try {
            object = target.send<"valueForKey:", objc::handle>(toNSString(key));
        } catch (...) {
            return CallResult::refused(who + " has no value for the key `" + key + "`");
        }
        return { objectValue(object) };
    }
    for (std::string const& getter : getters(key)) {
        SEL const selector = sel_registerName(getter.c_str());
        if (!objc::is_true(class_respondsToSelector(cls, selector)))
            continue;
        Method const method = class_getInstanceMethod(cls, selector);
        char const* const encoding = method ? method_getTypeEncoding(method) : nullptr;
        auto const types = methodTypes(encoding ? encoding : "");
        if (!types || !types->arguments.empty() || types->result->code == 'v')
            continue;
        if (types->result->code == '@')
            object = objc::call_implementation<objc::handle>(
                objc::boundary::message_implementation(target.object, selector), target.object, selector);
        else
            return perform(target, selector, *types, Json::array());
        return { objectValue(object) };
    }
    for (std::string const& name : variables(key)) {
        Ivar const variable = class_getInstanceVariable(cls, name.c_str());
        if (!variable)
            continue;
        auto const type = valueType(ivar_getTypeEncoding(variable));
        if (!type)
            return CallResult::refused(type.message());
        auto const* const bytes = reinterpret_cast<char const*>(target.object) + ivar_getOffset(variable);
        if ((*type)->code == '@')
            object = objc::handle { *reinterpret_cast<id const*>(bytes) };
        return { readValue(**type, bytes) };
    }
    auto const near = nearestNames(key, selectorsOf(target));
    return CallResult::refused(
        who + " has no value for the key `" + key + "`" + (near.empty() ? "" : "; near: " + listed(near)));
}

// Levenshtein's distance, letters of either case being the same.
std::size_t distance(std::string const& a, std::string const& b)
{
    auto const same = [](char x, char y) {
        return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
    };
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            std::size_t const above = row[j];
            row[j] = std::min({ above + 1, row[j - 1] + 1, diagonal + (same(a[i - 1], b[j - 1]) ? 0 : 1) });
            diagonal = above;
        }
    }
    return row[b.size()];
}

}

CallResult sendMessage(objc::handle target, std::string const& selectorName, Json const& arguments)
{
    if (selectorName.empty())
        return CallResult::refused("a selector has at least one letter");
    SEL const selector = sel_registerName(selectorName.c_str());
    Class const cls = objc::boundary::class_of(target.object);
    if (!objc::is_true(class_respondsToSelector(cls, selector))) {
        auto const near = nearestNames(selectorName, selectorsOf(target));
        return CallResult::refused(classNameOf(target) + " does not answer to `" + selectorName + "`"
            + (near.empty() ? "" : "; near: " + listed(near)));
    }
    return sendTo(target, selector, arguments);
}

CallResult valueForKey(objc::handle target, std::string const& path)
{
    std::size_t start = 0;
    CallResult answer;
    objc::handle object = target;
    while (true) {
        std::size_t const dot = path.find('.', start);
        std::string const key = path.substr(start, dot == path.npos ? dot : dot - start);
        if (key.empty())
            return CallResult::refused("`" + path + "` is no key");
        objc::handle next;
        answer = valueOfOneKey(object, key, next);
        if (!answer.isGood || dot == path.npos)
            return answer;
        if (answer.value.is_null())
            return answer;   // nil has nil for every key
        if (!next)
            return CallResult::refused("`" + path.substr(0, dot) + "` is no object, so it has no keys");
        object = next;
        start = dot + 1;
    }
}

std::vector<std::string> selectorsOf(objc::handle target)
{
    std::set<std::string> names;
    for (Class cls = objc::boundary::class_of(target.object); cls; cls = class_getSuperclass(cls)) {
        unsigned count = 0;
        Method* const methods = class_copyMethodList(cls, &count);
        for (unsigned i = 0; i < count; ++i)
            names.insert(sel_getName(method_getName(methods[i])));
        free(methods);
    }
    return { names.begin(), names.end() };
}

std::vector<std::string> nearestNames(
    std::string const& wrong, std::vector<std::string> const& names, std::size_t most)
{
    std::vector<std::pair<std::size_t, std::string>> near;
    // A few slips of the finger, or the beginning of the name.
    std::size_t const slips = std::max<std::size_t>(2, wrong.size() / 3);
    for (std::string const& name : names) {
        bool const isBeginning = !wrong.empty() && name.starts_with(wrong);
        bool const isSimilar =
            name.size() < wrong.size() + slips + 1 && wrong.size() < name.size() + slips + 1;
        std::size_t const far = isSimilar ? distance(wrong, name) : name.size();
        if (isBeginning || (isSimilar && far <= slips))
            near.emplace_back(far, name);
    }
    std::ranges::sort(near);
    std::vector<std::string> nearest;
    for (std::size_t i = 0; i < near.size() && i < most; ++i)
        nearest.push_back(near[i].second);
    return nearest;
}

}
