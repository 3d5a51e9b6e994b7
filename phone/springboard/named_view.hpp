// Views of SpringBoard's that are plain views under a name of their own, so that view trees can be read.
#pragma once

#include "objc/define.hpp"
#include "phone/uikit/ui_view.hpp"

namespace phone {

// The same object, owned as one of a superclass.
template <class Base, class T>
objc::ref<Base> asBase(objc::ref<T> const& object)
{
    static_assert(std::is_base_of_v<Base, T>);
    return objc::retain(Base { object.get().object });
}

template <objc::fixed_string Name>
struct NamedView : objc::subclass<NamedView<Name>, Name, UIView> {
    using NamedView::subclass::subclass;

    // Defines the class at the first view.
    static objc::ref<UIView> make(CGRect frame = {})
    {
        if (!NamedView::cls())
            objc::define<NamedView>().install();
        return asBase<UIView>(phone::make<NamedView>(frame));
    }
};

}
