#include "phone/springboard/class_changes.hpp"

#include "objc/abi.hpp"

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <utility>

namespace phone {

namespace {

// The leading part of GNU libobjc's class structure (ABI 8), which every program compiled for it contains and
// which therefore cannot change. The runtime has no function that takes a method away.
struct MethodRow {
    SEL selector;
    char const* encoding;
    IMP implementation;
};
struct MethodList {
    MethodList* next;
    int count;
    MethodRow rows[1];
};
struct IvarRow {
    char const* name;
    char const* encoding;
    int offset;
};
struct IvarList {
    int count;
    IvarRow rows[1];
};
struct ClassLayout {
    Class isa;
    Class superclass;
    char const* name;
    long version;
    unsigned long info;
    long instanceSize;
    IvarList* ivars;
    MethodList* methods;
};

extern "C" {
id objc_lookUpClass(char const* name);
void __objc_update_dispatch_table_for_class(Class cls);
}

Class classNamed(std::string_view name)
{
    return reinterpret_cast<Class>(objc_lookUpClass(std::string(name).c_str()));
}

Error missing(std::string_view kind, std::string_view name, std::string_view text)
{
    return { "there is no " + std::string(kind) + " " + std::string(name) + " for `" + std::string(text)
        + "`" };
}

struct TakenMember {
    Class from;
    std::function<void()> giveBack;
};

// Under the text that named it.
std::multimap<std::string, TakenMember, std::less<>>& takenMembers()
{
    static std::multimap<std::string, TakenMember, std::less<>> members;
    return members;
}

bool removeMethod(Class cls, std::string const& selector, std::string_view text)
{
    bool isRemoved = false;
    for (MethodList* list = reinterpret_cast<ClassLayout*>(cls)->methods; list; list = list->next) {
        for (int i = list->count - 1; i >= 0; --i) {
            MethodRow const row = list->rows[i];
            if (selector != sel_getName(row.selector))
                continue;
            std::copy(list->rows + i + 1, list->rows + list->count, list->rows + i);
            --list->count;
            isRemoved = true;
            takenMembers().emplace(text,
                TakenMember { cls,
                    [cls, row] { class_addMethod(cls, row.selector, row.implementation, row.encoding); } });
        }
    }
    if (isRemoved)
        __objc_update_dispatch_table_for_class(cls);
    return isRemoved;
}

bool removeIvar(Class cls, std::string const& name, std::string_view text)
{
    IvarList* const list = reinterpret_cast<ClassLayout*>(cls)->ivars;
    if (!list)
        return false;
    for (IvarRow* row = list->rows; row != list->rows + list->count; ++row)
        if (name == row->name) {
            takenMembers().emplace(text, TakenMember { cls, [row, was = row->name] { row->name = was; } });
            row->name = "";
            return true;
        }
    return false;
}

}

bool namesMember(std::string_view text) { return text.find(' ') != text.npos || text.find('.') != text.npos; }

Status removeMember(std::string_view text)
{
    auto const split = text.find_first_of(" .");
    std::string_view const className = text.substr(0, split);
    Class const cls = classNamed(className);
    if (split == text.npos || !cls)
        return missing("class", className, text);
    std::string const member { text.substr(split + 1) };
    if (text[split] == '.')
        return removeIvar(cls, member, text) ? Status {} : missing("instance variable", member, text);
    Class const metaclass = *reinterpret_cast<Class*>(cls);
    bool const isInstanceMethod = removeMethod(cls, member, text);
    bool const isClassMethod = removeMethod(metaclass, member, text);
    return isInstanceMethod || isClassMethod ? Status {} : missing("method", member, text);
}

Status restoreMember(std::string_view text)
{
    auto const [first, last] = takenMembers().equal_range(text);
    if (first == last)
        return missing("member", text, text);
    for (auto row = first; row != last; ++row)
        row->second.giveBack();
    takenMembers().erase(first, last);
    return {};
}

Status addMethod(std::string_view text)
{
    auto const split = text.find(' ');
    std::string_view const className = text.substr(0, split);
    Class const cls = classNamed(className);
    if (split == text.npos || !cls)
        return missing("class", className, text);
    std::string const selector { text.substr(split + 1) };
    std::string encoding = "@@:";
    encoding.append(static_cast<std::size_t>(std::count(selector.begin(), selector.end(), ':')), '@');
    auto* const answerNil = +[](id, SEL) -> id { return nullptr; };
    auto const add = [&](Class owner) {
        class_addMethod(
            owner, sel_registerName(selector.c_str()), reinterpret_cast<IMP>(answerNil), encoding.c_str());
    };
    // One that was taken away comes where it was: it may have been the class's own.
    auto const [first, last] = takenMembers().equal_range(text);
    for (auto row = first; row != last; ++row)
        add(row->second.from);
    if (first == last)
        add(cls);
    return {};
}

}
