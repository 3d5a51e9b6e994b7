#include "phone/screen/backdrop_cache.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace phone {

namespace {

// Four sums side by side, so that the multiplications overlap; mixed at the end. Not for enemies: the pixels
// are our own.
class PixelHash {
public:
    void add(std::uint8_t const* bytes, std::size_t count)
    {
        std::size_t at = 0;
        for (; at + 32 <= count; at += 32) {
            for (std::size_t i = 0; i < 4; ++i)
                add(m_sums[i], bytes + at + 8 * i, 8);
        }
        for (; at < count; at += 8)
            add(m_sums[0], bytes + at, std::min<std::size_t>(8, count - at));
    }
    std::uint64_t value() const
    {
        std::uint64_t result = 0;
        for (std::uint64_t const sum : m_sums)
            result = (result ^ sum ^ (sum >> 29)) * kPrime;
        return result ^ (result >> 32);
    }

private:
    static constexpr std::uint64_t kPrime = 0x9e3779b97f4a7c15;

    static void add(std::uint64_t& sum, std::uint8_t const* bytes, std::size_t count)
    {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes, count);
        sum = (sum ^ word) * kPrime;
        sum ^= sum >> 32;
    }
    std::uint64_t m_sums[4] { 1, 2, 3, 4 };
};

// Beyond what a backdrop takes in: 2.5 sigmas and a square of the coarsest grid.
constexpr double kSigmas = 2.5;
constexpr double kSquares = 16;

}

graphics::Backdrop BackdropCache::take(cairo_t* cairo, graphics::BlurStyle const& style)
{
    cairo_surface_t* const surface = cairo_get_group_target(cairo);
    if (cairo_surface_get_type(surface) != CAIRO_SURFACE_TYPE_IMAGE)
        return {};
    cairo_surface_flush(surface);

    Key key;
    key.style = style;
    cairo_matrix_t matrix;
    cairo_get_matrix(cairo, &matrix);
    key.pixelsPerPoint = std::sqrt(std::abs(matrix.xx * matrix.yy - matrix.xy * matrix.yx));
    cairo_identity_matrix(cairo);
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;
    cairo_path_extents(cairo, &left, &top, &right, &bottom);
    cairo_set_matrix(cairo, &matrix);
    cairo_surface_get_device_offset(surface, &key.origin.x, &key.origin.y);
    key.extents = { left, top, right - left, bottom - top };

    double const margin = kSigmas * style.sigma * key.pixelsPerPoint + kSquares;
    graphics::Rect const whole { 0, 0, static_cast<double>(cairo_image_surface_get_width(surface)),
        static_cast<double>(cairo_image_surface_get_height(surface)) };
    graphics::Rect const wanted = key.extents.offset(key.origin.x, key.origin.y).inset(-margin, -margin);
    key.region = intersection(wanted, whole);
    if (key.region.isEmpty())
        return {};

    PixelHash hash;
    auto const firstColumn = static_cast<std::ptrdiff_t>(std::floor(key.region.x));
    auto const columns =
        static_cast<std::size_t>(std::ceil(key.region.maxX())) - static_cast<std::size_t>(firstColumn);
    auto const lastRow = static_cast<std::ptrdiff_t>(std::ceil(key.region.maxY()));
    std::uint8_t const* const pixels = cairo_image_surface_get_data(surface);
    std::ptrdiff_t const stride = cairo_image_surface_get_stride(surface);
    for (auto row = static_cast<std::ptrdiff_t>(std::floor(key.region.y)); row < lastRow; ++row)
        hash.add(pixels + row * stride + firstColumn * 4, columns * 4);
    key.pixels = hash.value();

    for (Entry& each : m_entries) {
        if (each.key == key) {
            each.isUsed = true;
            ++m_hits;
            return each.backdrop;
        }
    }
    m_entries.push_back({ key, graphics::takeBackdrop(cairo, style) });
    return m_entries.back().backdrop;
}

void BackdropCache::beginFrame()
{
    for (Entry& each : m_entries)
        each.isUsed = false;
}

void BackdropCache::endFrame()
{
    std::erase_if(m_entries, [](Entry const& each) { return !each.isUsed; });
}

}
