// The runtime's type encodings as types: how large a value is, how libffi passes it, how scripts write it.
// Main thread.
#pragma once

#include "objc/handle.hpp"
#include "phone/kernel/result.hpp"
#include "phone/kernel/trace.hpp"

#include <ffi.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace phone {

// One type. Made once for each encoding and kept for good.
struct ValueType {
    char code { 'v' };        // the encoding's letter; `?` for a block, `{` for a struct
    std::string name;         // of a struct, as in `CGRect`
    std::size_t size { 0 };   // bytes
    std::size_t alignment { 1 };
    std::vector<ValueType const*> members;   // of a struct
    std::vector<std::size_t> offsets;        // of the members, in bytes
    ffi_type* wire { &ffi_type_void };
    std::vector<ffi_type*> wireMembers;   // what `wire` of a struct points into; ends with null
    ffi_type wireStruct {};
};

// A method's encoding: result and arguments, without receiver and selector.
struct MethodTypes {
    ValueType const* result { nullptr };
    std::vector<ValueType const*> arguments;
};

// `v@:{CGRect={CGPoint=dd}{CGSize=dd}}`, with or without frame offsets and qualifiers. The error names what
// scripts can't pass: arrays, unions and bit fields by value.
Result<MethodTypes> methodTypes(std::string_view encoding);
// One type, an instance variable's.
Result<ValueType const*> valueType(std::string_view encoding);

// Writes a script's value at `bytes`, which has room for the type. Objects made for it are lent until the
// autorelease pool drains. The error begins with `where`, and says which kind was expected.
Status writeValue(ValueType const& type, Json const& value, void* bytes, std::string const& where);

// Reads what stands at `bytes`. Null for void and for pointers that mean nothing outside the process.
Json readValue(ValueType const& type, void const* bytes);

// The same for a result that libffi has left: one narrower than a register stands in a whole register.
Json readResult(ValueType const& type, void const* bytes);

}
