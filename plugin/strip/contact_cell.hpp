// CVLContactCell: one slot of the strip. Its content is its subviews, made anew at each use; the properties are declared for
// whoever reads a cell by key, and stay empty.
#pragma once

#include "platform/uikit.hpp"

inline NSString kContactCellIdentifier() { return "ContactCell"_ns; }

struct CVLContactCell : objc::subclass<CVLContactCell, "CVLContactCell", UICollectionViewCell> {
    using subclass::subclass;
};
void defineCVLContactCell();   // start-up calls it once
