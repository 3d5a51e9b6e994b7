#include "objc/hook.hpp"
struct Pair {
    static inline objc::original<int(objc::handle, SEL)> original;
    static void replacement(objc::handle, SEL) { }
};
void use() { objc::hook<Pair>(); }
