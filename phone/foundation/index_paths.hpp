// NSIndexPath, as UIKit extends it.
#pragma once

namespace phone {

// Adds indexPathForItem:inSection:, indexPathForRow:inSection:, section, item and row. Again: no change.
void extendIndexPaths();

}
