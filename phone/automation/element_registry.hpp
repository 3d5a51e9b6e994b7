// ElementRegistry: the names by which clients speak of elements. An object keeps its name while it lives; the registry does not
// keep it alive. Main thread.
#pragma once

#include "phone/automation/error.hpp"
#include "phone/foundation/weak.hpp"

#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>

namespace phone {

class ElementRegistry {
public:
    // Names go on from this number: a phone before this one gave the earlier ones, and they are stale.
    explicit ElementRegistry(std::uint64_t given = 0)
        : m_given(given)
    {
    }

    std::string nameOf(objc::handle object);

    // `no such element` for a name that was never given, `stale element reference` for that of an object that is gone.
    Answer<objc::handle> objectOf(std::string const& name) const;

    // How many names were given, by earlier phones too.
    std::uint64_t given() const { return m_given; }

private:
    void forgetGone();

    std::uint64_t m_given;
    std::size_t m_sweepAt { 1024 };
    std::map<std::uint64_t, Weak<objc::handle>> m_objects;
    std::unordered_map<void*, std::uint64_t> m_numbers;   // of objects that live, or have lived there
};

}
