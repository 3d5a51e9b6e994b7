#include "phone/automation/scripts/value_types.hpp"

#include "phone/automation/scripts/value_objects.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/springboard/object_values.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <map>
#include <memory>

namespace phone {

namespace {

struct Plain {
    char code;
    std::size_t size;
    ffi_type* wire;
};
constexpr std::size_t kWord = sizeof(void*);
constexpr std::array kPlainTypes {
    Plain { 'v', 0, &ffi_type_void },
    Plain { '@', kWord, &ffi_type_pointer },
    Plain { '#', kWord, &ffi_type_pointer },
    Plain { ':', kWord, &ffi_type_pointer },
    Plain { '*', kWord, &ffi_type_pointer },
    Plain { '^', kWord, &ffi_type_pointer },
    Plain { '?', kWord, &ffi_type_pointer },
    Plain { 'B', 1, &ffi_type_uint8 },
    Plain { 'c', 1, &ffi_type_sint8 },
    Plain { 'C', 1, &ffi_type_uint8 },
    Plain { 's', 2, &ffi_type_sint16 },
    Plain { 'S', 2, &ffi_type_uint16 },
    Plain { 'i', 4, &ffi_type_sint32 },
    Plain { 'I', 4, &ffi_type_uint32 },
    Plain { 'l', 8, &ffi_type_sint64 },
    Plain { 'L', 8, &ffi_type_uint64 },
    Plain { 'q', 8, &ffi_type_sint64 },
    Plain { 'Q', 8, &ffi_type_uint64 },
    Plain { 'f', 4, &ffi_type_float },
    Plain { 'd', 8, &ffi_type_double },
};

// How scripts write the structs that have a form of their own; all are made of doubles.
struct StructForm {
    std::string_view key;
    std::size_t count;   // of doubles
    std::vector<std::string_view> names;
};
StructForm const* formOf(ValueType const& type)
{
    static std::vector<StructForm> const forms {
        { "rect", 4, { "CGRect", "_NSRect", "NSRect" } },
        { "size", 2, { "CGSize", "_NSSize", "NSSize" } },
        { "point", 2, { "CGPoint", "_NSPoint", "NSPoint" } },
        { "insets", 4, { "UIEdgeInsets", "NSDirectionalEdgeInsets" } },
        { "transform", 6, { "CGAffineTransform" } },
    };
    for (StructForm const& form : forms)
        if (std::ranges::find(form.names, type.name) != form.names.end()
            && type.size == form.count * sizeof(double))
            return &form;
    return nullptr;
}

// Reads types off the front of an encoding.
class EncodingReader {
public:
    explicit EncodingReader(std::string_view text)
        : m_text(text)
        , m_rest(text)
    {
    }

    bool isAtEnd() const { return m_rest.empty(); }

    // Null for what can't be passed; error() tells.
    ValueType const* read()
    {
        skipQualifiers();
        if (m_rest.empty())
            return refuse();
        ValueType const* const type = m_rest.front() == '{' ? readStruct() : readPlain();
        if (!type)
            return refuse();
        skipOffset();
        return type;
    }

    Error error() const
    {
        return { "the encoding `" + std::string(m_text) + "` has a type that scripts can't pass" };
    }

private:
    static std::map<std::string, std::unique_ptr<ValueType>, std::less<>>& known()
    {
        static auto& types = *new std::map<std::string, std::unique_ptr<ValueType>, std::less<>>;
        return types;
    }

    ValueType const* refuse()
    {
        m_rest = {};
        return nullptr;
    }

    void skipQualifiers()
    {
        while (!m_rest.empty() && std::string_view("rnNoORVA").find(m_rest.front()) != std::string_view::npos)
            m_rest.remove_prefix(1);
    }

    void skipOffset()
    {
        while (!m_rest.empty() && (m_rest.front() == '+' || m_rest.front() == '-'))
            m_rest.remove_prefix(1);
        while (!m_rest.empty() && m_rest.front() >= '0' && m_rest.front() <= '9')
            m_rest.remove_prefix(1);
    }

    // Over what a pointer points to, which may be anything.
    void skipAny()
    {
        skipQualifiers();
        if (m_rest.empty())
            return;
        char const first = m_rest.front();
        std::size_t end = 1;
        if (std::string_view("{[(").find(first) != std::string_view::npos) {
            int depth = 0;
            for (end = 0; end < m_rest.size(); ++end) {
                char const letter = m_rest[end];
                depth += letter == '{' || letter == '[' || letter == '(';
                depth -= letter == '}' || letter == ']' || letter == ')';
                if (depth == 0)
                    break;
            }
            end = std::min(end + 1, m_rest.size());
        }
        m_rest.remove_prefix(end);
        if (first == '^')
            skipAny();
    }

    ValueType const* readPlain()
    {
        char code = m_rest.front();
        m_rest.remove_prefix(1);
        if (code == '^')
            skipAny();
        if (code == '@' && m_rest.starts_with('?')) {
            m_rest.remove_prefix(1);
            code = '?';
        } else if (code == '@' && m_rest.starts_with('"')) {
            auto const end = m_rest.find('"', 1);
            m_rest.remove_prefix(end == m_rest.npos ? m_rest.size() : end + 1);
        }
        auto const plain = std::ranges::find(kPlainTypes, code, &Plain::code);
        if (plain == kPlainTypes.end())
            return nullptr;
        auto& type = known()[std::string(1, code)];
        if (!type) {
            type = std::make_unique<ValueType>();
            type->code = code;
            type->size = plain->size;
            type->alignment = std::max<std::size_t>(plain->size, 1);
            type->wire = plain->wire;
        }
        return type.get();
    }

    ValueType const* readStruct()
    {
        std::string_view const start = m_rest;
        m_rest.remove_prefix(1);
        auto made = std::make_unique<ValueType>();
        made->code = '{';
        auto const nameEnd = m_rest.find_first_of("=}");
        if (nameEnd == m_rest.npos || m_rest[nameEnd] != '=' || ++m_depth > kMaxDepth)
            return nullptr;
        made->name = m_rest.substr(0, nameEnd);
        m_rest.remove_prefix(nameEnd + 1);
        while (!m_rest.starts_with('}')) {
            ValueType const* const member = read();
            if (!member || member->code == 'v')
                return nullptr;
            std::size_t const offset =
                (made->size + member->alignment - 1) / member->alignment * member->alignment;
            made->members.push_back(member);
            made->offsets.push_back(offset);
            made->wireMembers.push_back(member->wire);
            made->size = offset + member->size;
            made->alignment = std::max(made->alignment, member->alignment);
        }
        m_rest.remove_prefix(1);
        --m_depth;
        if (made->members.empty())
            return nullptr;
        made->size = (made->size + made->alignment - 1) / made->alignment * made->alignment;
        auto& type = known()[std::string(start.substr(0, start.size() - m_rest.size()))];
        if (!type) {
            made->wireMembers.push_back(nullptr);
            made->wireStruct.type = FFI_TYPE_STRUCT;
            made->wireStruct.elements = made->wireMembers.data();
            made->wire = &made->wireStruct;
            type = std::move(made);
        }
        return type.get();
    }

    static constexpr int kMaxDepth = 16;

    std::string_view m_text;
    std::string_view m_rest;
    int m_depth { 0 };
};

Error expected(std::string const& where, std::string_view kind, Json const& value)
{
    return { where + " takes " + std::string(kind) + ", not "
        + value.dump(-1, ' ', false, Json::error_handler_t::replace).substr(0, 80) };
}

template <class T>
void put(void* bytes, T value)
{
    std::memcpy(bytes, &value, sizeof value);
}
template <class T>
T get(void const* bytes)
{
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

// A whole number in the range of T. Clients send 3 and 3.0 alike.
template <class T>
Status writeInteger(Json const& value, void* bytes, std::string const& where)
{
    constexpr auto kLowest = std::numeric_limits<T>::min();
    constexpr auto kHighest = std::numeric_limits<T>::max();
    if (value.is_number_unsigned()) {
        auto const number = value.get<std::uint64_t>();
        if (number <= static_cast<std::uint64_t>(kHighest)) {
            put(bytes, static_cast<T>(number));
            return {};
        }
    } else if (value.is_number_integer()) {
        auto const number = value.get<std::int64_t>();
        bool const fits = std::is_signed_v<T>
            ? number >= static_cast<std::int64_t>(kLowest) && number <= static_cast<std::int64_t>(kHighest)
            : number >= 0 && static_cast<std::uint64_t>(number) <= static_cast<std::uint64_t>(kHighest);
        if (fits) {
            put(bytes, static_cast<T>(number));
            return {};
        }
    } else if (value.is_number_float()) {
        double const number = value.get<double>();
        // The next power of two above the highest is exact as a double; the highest itself may not be.
        if (std::trunc(number) == number && number >= static_cast<double>(kLowest)
            && number < std::ldexp(1.0, std::numeric_limits<T>::digits)) {
            put(bytes, static_cast<T>(number));
            return {};
        }
    }
    return expected(
        where, "a whole number from " + std::to_string(kLowest) + " to " + std::to_string(kHighest), value);
}

// A byte holds a truth value in some encodings, and a small number in others.
template <class T>
Status writeByte(Json const& value, void* bytes, std::string const& where)
{
    if (value.is_boolean()) {
        put(bytes, static_cast<T>(value.get<bool>()));
        return {};
    }
    return writeInteger<T>(value, bytes, where);
}

Status writeBool(Json const& value, void* bytes, std::string const& where)
{
    if (!value.is_boolean() && value != 0 && value != 1)
        return expected(where, "true or false", value);
    put(bytes, value.is_boolean() ? value.get<bool>() : value == 1);
    return {};
}

Status writeClass(Json const& value, void* bytes, std::string const& where)
{
    Class found = nullptr;
    if (value.is_string())
        found = objc_getClass(value.get<std::string>().c_str());
    else if (value.is_object()) {
        auto const object = objectOfValue(value, where);
        if (!object)
            return object.error();
        found = reinterpret_cast<Class>(object->object);
    }
    if (!found && !value.is_null())
        return expected(where, "the name of a class", value);
    put(bytes, found);
    return {};
}

Status writeStruct(ValueType const& type, Json const& value, void* bytes, std::string const& where)
{
    StructForm const* const form = formOf(type);
    Json const* elements = &value;
    if (form) {
        bool const hasForm = value.is_object() && value.size() == 1 && value.contains(form->key);
        std::string const wanted =
            "{\"" + std::string(form->key) + "\": […]} of " + std::to_string(form->count) + " numbers";
        if (!hasForm)
            return expected(where, wanted, value);
        elements = &value[std::string(form->key)];
        if (!elements->is_array() || elements->size() != form->count)
            return expected(where, wanted, value);
        auto* next = static_cast<char*>(bytes);
        for (Json const& each : *elements) {
            if (!each.is_number())
                return expected(where, wanted, value);
            put(next, each.get<double>());
            next += sizeof(double);
        }
        return {};
    }
    if (!elements->is_array() || elements->size() != type.members.size())
        return expected(where, "an array of " + std::to_string(type.members.size()) + " values", value);
    for (std::size_t i = 0; i < type.members.size(); ++i) {
        auto const written = writeValue(*type.members[i], (*elements)[i],
            static_cast<char*>(bytes) + type.offsets[i], where + "[" + std::to_string(i) + "]");
        if (!written)
            return written;
    }
    return {};
}

Json readStruct(ValueType const& type, void const* bytes)
{
    Json elements = Json::array();
    if (StructForm const* const form = formOf(type)) {
        for (std::size_t i = 0; i < form->count; ++i)
            elements.push_back(get<double>(static_cast<char const*>(bytes) + i * sizeof(double)));
        return Json::object({ { std::string(form->key), std::move(elements) } });
    }
    for (std::size_t i = 0; i < type.members.size(); ++i)
        elements.push_back(readValue(*type.members[i], static_cast<char const*>(bytes) + type.offsets[i]));
    return elements;
}

// Truth values of Foundation's are a byte that is 0 or 1.
Json readByte(int value) { return value == 0 || value == 1 ? Json(value == 1) : Json(value); }

}

Result<MethodTypes> methodTypes(std::string_view encoding)
{
    EncodingReader reader(encoding);
    MethodTypes types;
    types.result = reader.read();
    // Receiver and selector are the same in every method.
    bool isGood = types.result && !reader.isAtEnd() && reader.read() && !reader.isAtEnd() && reader.read();
    while (isGood && !reader.isAtEnd()) {
        ValueType const* const argument = reader.read();
        isGood = argument && argument->code != 'v';
        types.arguments.push_back(argument);
    }
    if (!isGood)
        return reader.error();
    return types;
}

Result<ValueType const*> valueType(std::string_view encoding)
{
    EncodingReader reader(encoding);
    ValueType const* const type = reader.read();
    if (!type)
        return reader.error();
    return type;
}

Status writeValue(ValueType const& type, Json const& value, void* bytes, std::string const& where)
{
    switch (type.code) {
    case '@': {
        auto const object = objectOfValue(value, where);
        if (!object)
            return object.error();
        put(bytes, object->object);
        return {};
    }
    case '#': return writeClass(value, bytes, where);
    case ':':
        if (!value.is_string() && !value.is_null())
            return expected(where, "a selector as text", value);
        put(bytes, value.is_null() ? SEL {} : sel_registerName(value.get<std::string>().c_str()));
        return {};
    case '*':
        if (!value.is_string() && !value.is_null())
            return expected(where, "a text", value);
        put(bytes, value.is_null() ? nullptr : toNSString(value.get<std::string>()).UTF8String());
        return {};
    case '^':
    case '?':
        if (!value.is_null())
            return expected(
                where, type.code == '?' ? "a block, of which scripts have null alone" : "null", value);
        put<void*>(bytes, nullptr);
        return {};
    case 'B': return writeBool(value, bytes, where);
    case 'c': return writeByte<signed char>(value, bytes, where);
    case 'C': return writeByte<unsigned char>(value, bytes, where);
    case 's': return writeInteger<short>(value, bytes, where);
    case 'S': return writeInteger<unsigned short>(value, bytes, where);
    case 'i': return writeInteger<int>(value, bytes, where);
    case 'I': return writeInteger<unsigned>(value, bytes, where);
    case 'l':
    case 'q': return writeInteger<long long>(value, bytes, where);
    case 'L':
    case 'Q': return writeInteger<unsigned long long>(value, bytes, where);
    case 'f':
    case 'd':
        if (!value.is_number())
            return expected(where, "a number", value);
        if (type.code == 'f')
            put(bytes, value.get<float>());
        else
            put(bytes, value.get<double>());
        return {};
    case '{': return writeStruct(type, value, bytes, where);
    default: return Error { where + " is of a type that scripts can't pass" };
    }
}

Json readValue(ValueType const& type, void const* bytes)
{
    switch (type.code) {
    case '@': return objectValue(objc::handle { get<id>(bytes) });
    case '#': return objectValue(objc::handle { reinterpret_cast<id>(get<Class>(bytes)) });
    case '?': return objectValue(objc::handle { get<id>(bytes) });
    case ':': {
        SEL const selector = get<SEL>(bytes);
        return selector ? Json(sel_getName(selector)) : Json();
    }
    case '*': {
        auto const* const text = get<char const*>(bytes);
        return text ? Json(toString(toNSString(text))) : Json();
    }
    case 'B': return get<unsigned char>(bytes) != 0;
    case 'c': return readByte(get<signed char>(bytes));
    case 'C': return readByte(get<unsigned char>(bytes));
    case 's': return get<short>(bytes);
    case 'S': return get<unsigned short>(bytes);
    case 'i': return get<int>(bytes);
    case 'I': return get<unsigned>(bytes);
    case 'l':
    case 'q': return get<long long>(bytes);
    case 'L':
    case 'Q': return get<unsigned long long>(bytes);
    case 'f': return get<float>(bytes);
    case 'd': return get<double>(bytes);
    case '{': return readStruct(type, bytes);
    default: return nullptr;
    }
}

Json readResult(ValueType const& type, void const* bytes)
{
    bool const isNarrow =
        type.size > 0 && type.size < sizeof(ffi_arg) && type.code != 'f' && type.code != '{';
    if (!isNarrow)
        return readValue(type, bytes);
    auto const whole = get<ffi_arg>(bytes);
    auto const one = static_cast<std::uint8_t>(whole);
    auto const two = static_cast<std::uint16_t>(whole);
    auto const four = static_cast<std::uint32_t>(whole);
    if (type.size == sizeof one)
        return readValue(type, &one);
    return type.size == sizeof two ? readValue(type, &two) : readValue(type, &four);
}

}
