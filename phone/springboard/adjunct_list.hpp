// The lock screen's adjunct list: a stack under the notifications, in which the media item stands while music
// plays, and whatever plug-ins put there. Two names by version, one class. Main thread.
#pragma once

#include "phone/kernel/system_version.hpp"
#include "phone/uikit/ui_stack_view.hpp"
#include "phone/uikit/ui_view_controller.hpp"

#include <vector>

namespace phone {

inline constexpr objc::fixed_string kDashBoardAdjunctList {
    "SBDashBoardNotificationAdjunctListViewController"
};
inline constexpr objc::fixed_string kCoverSheetAdjunctList { "CSNotificationAdjunctListViewController" };

struct AdjunctItem {
    objc::ref<objc::handle> item;
    objc::ref<UIView> view;
};

struct AdjunctListState {
    objc::ref<UIStackView> stack;   // the variable _stackView holds it for key-value coding
    std::vector<AdjunctItem> items;
};

// What the list is given to show: answers its view to -contentView. A view is taken as it is.
struct CSAdjunctListItem : objc::subclass<CSAdjunctListItem, "CSAdjunctListItem", NSObject> {
    using subclass::subclass;
    static objc::ref<CSAdjunctListItem> make(NSString identifier, UIView content);
    UIView contentView() const;
    NSString identifier() const;
};

// The controller's class; `Name` is the version's.
template <objc::fixed_string Name>
struct NotificationAdjunctListViewController
    : objc::subclass<NotificationAdjunctListViewController<Name>, Name, UIViewController> {
    using NotificationAdjunctListViewController::subclass::subclass;
    void viewDidLoad() const;
    void insertItem(objc::handle item, BOOL animated) const;   // _insertItem:animated:
    void removeItem(objc::handle item, BOOL animated) const;   // _removeItem:animated:
    void updatePresentingContent() const;                      // _updatePresentingContent
    BOOL isPresentingContent() const;
    AdjunctListState& list() const;
};

void defineAdjunctList(ClassFamily family);

// A new controller of the version's class.
objc::ref<UIViewController> makeAdjunctListController(ClassFamily family);

// The height of what its stack shows, in points; 0 without a stack or with nothing in it.
double adjunctListHeight(UIViewController controller);

// The stack, whatever the variable's name has become; nil before the view is loaded.
UIStackView adjunctStack(UIViewController controller);

}
