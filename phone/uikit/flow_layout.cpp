#include "phone/uikit/flow_layout.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

namespace phone {

namespace {

// Sums of fractions of a point: what misses by less still fits.
constexpr double kFlowTolerance = 1e-6;

double usable(double length) { return length > 0 && std::isfinite(length) ? length : 0; }

bool meets(CGRect a, CGRect b)
{
    return a.size.width > 0 && a.size.height > 0 && a.origin.x < b.origin.x + b.size.width
        && b.origin.x < a.origin.x + a.size.width && a.origin.y < b.origin.y + b.size.height
        && b.origin.y < a.origin.y + a.size.height;
}

}

void FlowSizes::append(CGSize size)
{
    size = { usable(size.width), usable(size.height) };
    if (!m_count)
        m_common = size;
    else if (m_each.empty() && size != m_common)
        m_each.assign(m_count, m_common);
    if (m_count && (size != m_common || !m_each.empty()))
        m_each.push_back(size);
    ++m_count;
}

void FlowSizes::appendEqual(CGSize size, std::size_t count)
{
    if (!count)
        return;
    append(size);
    for (std::size_t i = 1; i < count && !m_each.empty(); ++i, ++m_count)
        m_each.push_back(m_each.back());
    if (m_each.empty())
        m_count += count - 1;
}

FlowLayout::FlowLayout(ScrollDirection direction, double crossLength, std::vector<FlowSection> sections)
    : m_direction(direction)
    , m_crossLength(usable(crossLength))
{
    m_sections.reserve(sections.size());
    for (FlowSection& given : sections) {
        Section section;
        section.given = std::move(given);
        section.mainStart = m_mainLength;
        breakLines(section);
        m_mainLength += section.mainLength;
        m_sections.push_back(std::move(section));
    }
}

double FlowLayout::mainOf(CGSize size) const
{
    return m_direction == ScrollDirection::horizontal ? size.width : size.height;
}

double FlowLayout::crossOf(CGSize size) const
{
    return m_direction == ScrollDirection::horizontal ? size.height : size.width;
}

// Lines of equal items are arithmetic; others are found once and kept.
void FlowLayout::breakLines(Section& section)
{
    FlowSizes const& sizes = section.given.sizes;
    UIEdgeInsets const insets = section.given.insets;
    bool const isHorizontal = m_direction == ScrollDirection::horizontal;
    double const mainInsetBefore = isHorizontal ? insets.left : insets.top;
    double const mainInsetAfter = isHorizontal ? insets.right : insets.bottom;
    double const room =
        m_crossLength - (isHorizontal ? insets.top + insets.bottom : insets.left + insets.right);
    double const gap = section.given.interitemSpacing;

    if (sizes.areEqual()) {
        double const length = crossOf(sizes.at(0));
        if (length + gap > 0)
            section.capacity = static_cast<std::size_t>(
                std::clamp(std::floor((room + gap + kFlowTolerance) / (length + gap)), 1.0, 1e9));
        else
            section.capacity = std::max<std::size_t>(sizes.count(), 1);
        m_hasOversizedItem |= sizes.count() && length > room + kFlowTolerance;
        auto const lines = static_cast<double>(lineCount(section));
        if (lines > 0)
            section.mainLength = lines * mainOf(sizes.at(0)) + (lines - 1) * section.given.lineSpacing;
    } else {
        double main = section.mainStart + mainInsetBefore;
        for (std::size_t first = 0; first < sizes.count();) {
            double used = crossOf(sizes.at(first));
            std::size_t next = first + 1;
            for (; next < sizes.count(); ++next) {
                double const longer = used + gap + crossOf(sizes.at(next));
                if (longer > room + kFlowTolerance)
                    break;
                used = longer;
            }
            m_hasOversizedItem |= used > room + kFlowTolerance;
            section.lines.push_back(place(section, first, next - first, main));
            main += section.lines.back().mainLength + section.given.lineSpacing;
            first = next;
        }
        section.mainLength = main - section.given.lineSpacing - section.mainStart - mainInsetBefore;
    }
    section.mainLength += mainInsetBefore + mainInsetAfter;
}

FlowLayout::Line FlowLayout::place(
    Section const& section, std::size_t first, std::size_t count, double mainStart) const
{
    FlowSizes const& sizes = section.given.sizes;
    UIEdgeInsets const insets = section.given.insets;
    bool const isHorizontal = m_direction == ScrollDirection::horizontal;
    double const before = isHorizontal ? insets.top : insets.left;
    double const room =
        m_crossLength - (isHorizontal ? insets.top + insets.bottom : insets.left + insets.right);
    double const gap = section.given.interitemSpacing;

    Line line { first, count, mainStart, 0, before, gap };
    double used = 0;
    for (std::size_t i = first; i < first + count; ++i) {
        line.mainLength = std::max(line.mainLength, mainOf(sizes.at(i)));
        used += crossOf(sizes.at(i));
    }

    // A full line of equal items says how the incomplete one is spaced.
    std::size_t const slots = sizes.areEqual() ? section.capacity : count;
    if (sizes.areEqual())
        used = crossOf(sizes.at(first)) * static_cast<double>(slots);
    bool const isLast = first + count == sizes.count();
    double const last = crossOf(sizes.at(first + count - 1));
    bool const couldHoldMore =
        used + gap * static_cast<double>(slots) + (isLast ? last : 0) <= room + kFlowTolerance;
    if (slots == 1 && !(isLast && couldHoldMore))
        line.crossStart += (room - used) / 2;
    else if (slots > 1 && (sizes.areEqual() || !isLast))
        line.spacing = (room - used) / static_cast<double>(slots - 1);
    return line;
}

std::size_t FlowLayout::lineCount(Section const& section) const
{
    if (!section.given.sizes.areEqual())
        return section.lines.size();
    return (section.given.sizes.count() + section.capacity - 1) / section.capacity;
}

FlowLayout::Line FlowLayout::line(Section const& section, std::size_t index) const
{
    FlowSizes const& sizes = section.given.sizes;
    if (!sizes.areEqual())
        return section.lines[index];
    UIEdgeInsets const insets = section.given.insets;
    double const inset = m_direction == ScrollDirection::horizontal ? insets.left : insets.top;
    double const step = mainOf(sizes.at(0)) + section.given.lineSpacing;
    std::size_t const first = index * section.capacity;
    return place(section, first, std::min(section.capacity, sizes.count() - first),
        section.mainStart + inset + step * static_cast<double>(index));
}

std::size_t FlowLayout::lineOf(Section const& section, std::size_t item) const
{
    if (section.given.sizes.areEqual())
        return item / section.capacity;
    auto const after = std::upper_bound(section.lines.begin(), section.lines.end(), item,
        [](std::size_t wanted, Line const& line) { return wanted < line.first; });
    return static_cast<std::size_t>(after - section.lines.begin()) - 1;
}

// `cross` is where the item begins; it moves on to the next one.
CGRect FlowLayout::frameIn(Section const& section, Line const& line, std::size_t item, double& cross) const
{
    CGSize const size = section.given.sizes.at(item);
    double const main = line.mainStart + (line.mainLength - mainOf(size)) / 2;
    double const start = cross;
    cross += crossOf(size) + line.spacing;
    if (m_direction == ScrollDirection::horizontal)
        return { { main, start }, size };
    return { { start, main }, size };
}

CGSize FlowLayout::contentSize() const
{
    if (m_direction == ScrollDirection::horizontal)
        return { m_mainLength, m_crossLength };
    return { m_crossLength, m_mainLength };
}

std::size_t FlowLayout::itemCount(std::size_t section) const
{
    return section < m_sections.size() ? m_sections[section].given.sizes.count() : 0;
}

CGRect FlowLayout::itemFrame(FlowIndex index) const
{
    Section const& section = m_sections[index.section];
    Line const found = line(section, lineOf(section, index.item));
    double cross = found.crossStart;
    for (std::size_t i = found.first; i < index.item; ++i)
        cross += crossOf(section.given.sizes.at(i)) + found.spacing;
    return frameIn(section, found, index.item, cross);
}

std::vector<FlowIndex> FlowLayout::itemsIn(CGRect rect) const
{
    std::vector<FlowIndex> found;
    bool const isHorizontal = m_direction == ScrollDirection::horizontal;
    double const begin = isHorizontal ? rect.origin.x : rect.origin.y;
    double const end = begin + (isHorizontal ? rect.size.width : rect.size.height);

    for (std::size_t s = 0; s < m_sections.size(); ++s) {
        Section const& section = m_sections[s];
        if (section.mainStart + section.mainLength <= begin || section.mainStart >= end)
            continue;
        // The first line that ends after the rectangle begins.
        std::size_t low = 0;
        std::size_t high = lineCount(section);
        while (low < high) {
            std::size_t const middle = low + (high - low) / 2;
            Line const candidate = line(section, middle);
            if (candidate.mainStart + candidate.mainLength <= begin)
                low = middle + 1;
            else
                high = middle;
        }
        for (std::size_t count = lineCount(section); low < count; ++low) {
            Line const candidate = line(section, low);
            if (candidate.mainStart >= end)
                break;
            double cross = candidate.crossStart;
            for (std::size_t i = candidate.first; i < candidate.first + candidate.count; ++i) {
                if (meets(frameIn(section, candidate, i, cross), rect))
                    found.push_back({ s, i });
            }
        }
    }
    return found;
}

}
