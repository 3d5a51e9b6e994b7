// BackdropCache: blurred backdrops of the frame before. A backdrop is the same as long as the pixels beneath
// are, so they are what it is found by: nobody has to say what changed. Main thread.
#pragma once

#include "phone/graphics/blur.hpp"

#include <cstdint>
#include <vector>

namespace phone {

class BackdropCache {
public:
    // What takeBackdrop answers for the current path; kept, or taken now. The path stays.
    graphics::Backdrop take(cairo_t* cairo, graphics::BlurStyle const& style);

    // Around each picture. Backdrops that a picture did not use are dropped after it.
    void beginFrame();
    void endFrame();

    std::size_t hits() const { return m_hits; }   // since it was made

private:
    struct Key {
        std::uint64_t pixels { 0 };   // hash of all that the backdrop is made from
        graphics::Rect region;        // device pixels
        graphics::Point origin;       // of the surface, in device pixels
        graphics::Rect extents;       // of the path, device pixels
        double pixelsPerPoint { 1 };
        graphics::BlurStyle style;
        friend bool operator==(Key const&, Key const&) = default;
    };
    struct Entry {
        Key key;
        graphics::Backdrop backdrop;
        bool isUsed { true };
    };

    std::vector<Entry> m_entries;
    std::size_t m_hits { 0 };
};

}
