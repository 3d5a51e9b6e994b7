#include "objc/encoding.hpp"
struct Unknown {
    int a;
};
char const* use() { return objc::method_encoding<Unknown>.c_str(); }
