// FlowLayout: where UICollectionViewFlowLayout puts its items, as arithmetic on sizes. Points, in the
// content's space. UICollectionViewFlowLayout (ui_collection_view_layout.hpp) collects the sizes and asks.
//
// Items fill a line until the next one doesn't fit; lines follow each other along the direction of
// scrolling. "Main" is that direction, "cross" the other: with horizontal scrolling a line is a column, the
// line spacing stands between columns and the interitem spacing within a column.
#pragma once

#include "platform/core_graphics.hpp"

#include <cstddef>
#include <vector>

namespace phone {

enum class ScrollDirection : NSInteger { vertical = 0, horizontal = 1 };

// The sizes of a section's items. While all are equal, only one is kept: a list of any length costs the same.
class FlowSizes {
public:
    // A side that is negative or no number counts as 0.
    void append(CGSize);
    void appendEqual(CGSize, std::size_t count);

    std::size_t count() const { return m_count; }
    bool areEqual() const { return m_each.empty(); }
    CGSize at(std::size_t index) const { return m_each.empty() ? m_common : m_each[index]; }

private:
    std::size_t m_count { 0 };
    CGSize m_common {};
    std::vector<CGSize> m_each;   // empty while all are m_common
};

struct FlowSection {
    UIEdgeInsets insets {};
    double lineSpacing { 10 };
    double interitemSpacing { 10 };   // at least; what is left over in a line is added to it
    FlowSizes sizes;
};

struct FlowIndex {
    std::size_t section { 0 };
    std::size_t item { 0 };
    friend bool operator==(FlowIndex const&, FlowIndex const&) = default;
    friend auto operator<=>(FlowIndex const&, FlowIndex const&) = default;
};

class FlowLayout {
public:
    FlowLayout() = default;

    // `crossLength`: the room across the direction of scrolling, insets of the sections included.
    //
    // Within a line, as UIKit does it: what is left over goes between the items, so that the first and the
    // last touch the insets. A line that has room for one item only holds it in its middle, the last line
    // too. The last line of a section keeps the spacing of the full ones if all items have one size, and
    // else packs at the minimum spacing. Across the line's own thickness each item is centred.
    // An item longer than the room is centred too and sticks out on both sides; UIKit calls that undefined.
    FlowLayout(ScrollDirection, double crossLength, std::vector<FlowSection>);

    CGSize contentSize() const;
    std::size_t sectionCount() const { return m_sections.size(); }
    std::size_t itemCount(std::size_t section) const;

    // The index must exist.
    CGRect itemFrame(FlowIndex) const;

    // The items that meet the rectangle with more than an edge, in order. Costs as much as there are
    // answers, besides a binary search.
    // Deviation: UIKit also answers items without area that lie inside; nothing would be drawn for them.
    std::vector<FlowIndex> itemsIn(CGRect) const;

    // Does some item not fit across? UIKit logs a warning then.
    bool hasOversizedItem() const { return m_hasOversizedItem; }

private:
    struct Line {
        std::size_t first { 0 };
        std::size_t count { 0 };
        double mainStart { 0 };
        double mainLength { 0 };
        double crossStart { 0 };   // of the first item
        double spacing { 0 };      // between its items
    };
    struct Section {
        FlowSection given;
        double mainStart { 0 };   // insets included
        double mainLength { 0 };
        std::size_t capacity { 1 };   // items in a full line, when all have one size
        std::vector<Line> lines;      // filled when the sizes differ
    };

    double mainOf(CGSize) const;
    double crossOf(CGSize) const;
    std::size_t lineCount(Section const&) const;
    Line line(Section const&, std::size_t index) const;
    std::size_t lineOf(Section const&, std::size_t item) const;
    void breakLines(Section&);
    Line place(Section const&, std::size_t first, std::size_t count, double mainStart) const;
    CGRect frameIn(Section const&, Line const&, std::size_t item, double& cross) const;

    ScrollDirection m_direction { ScrollDirection::vertical };
    double m_crossLength { 0 };
    double m_mainLength { 0 };
    bool m_hasOversizedItem { false };
    std::vector<Section> m_sections;
};

}
