// A strip without contacts, whose button brings up the contact picker.
#pragma once

#include "tests/scenarios/story.hpp"

namespace phone {

class EmptyStripStory : public Story {
protected:
    static UIView addButton()
    {
        for (UIView const view : visibleViews())
            if (view.isDescendantOfView(phone().strip())
                && view.send<"isKindOfClass:", BOOL>(objc::cls<"UIControl">()))
                return view;
        return {};
    }
    static void openPicker(Json const& contacts)
    {
        ASSERT_TRUE(phone().setAddressBook(contacts));
        touch(addButton());
        wait();
    }
};

}
