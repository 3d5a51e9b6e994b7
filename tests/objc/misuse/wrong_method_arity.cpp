#include "objc/define.hpp"
struct Base : objc::subclass<Base, "Base", objc::handle> {
    using subclass::subclass;
};
struct Thing : objc::subclass<Thing, "Thing", Base> {
    using subclass::subclass;
    void move(int) const { }
};
void use() { objc::define<Thing>().method<"move:by:", &Thing::move>(); }
