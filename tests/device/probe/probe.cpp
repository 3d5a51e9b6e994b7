// A library that does, on its smallest scale, all that crosses between the plug-in and the system: hooks, classes of its own,
// rectangles and narrow integers, blocks both ways, exceptions that pass through.
#include "objc/block.hpp"
#include "objc/define.hpp"
#include "objc/hook.hpp"
#include "platform/core_graphics.hpp"
#include "platform/foundation.hpp"
#include "platform/substrate.hpp"

#include <string>
#include <vector>

namespace {

struct Host : objc::subclass<Host, "LoaderTestHost", NSObject> {
    using subclass::subclass;
};

// Adds 88 points to what the original makes of it.
struct LayoutFlip {
    static inline objc::original<CGRect(Host, SEL, CGRect, BOOL)> original;
    static CGRect replacement(Host self, SEL cmd, CGRect rect, BOOL flip)
    {
        CGRect layout = original(self, cmd, rect, flip);
        layout.size.height += 88;
        return layout;
    }
};

struct Probe : objc::subclass<Probe, "CVLLoaderProbe", NSObject> {
    using subclass::subclass;

    BOOL negate(BOOL value) const { return !value; }
    std::int16_t addShorts(std::int16_t a, signed char b) const { return static_cast<std::int16_t>(a + b); }

    double callTwice(objc::block_ref<double(double)> block) const { return block(1) + block(20); }

    // The host keeps the block beyond this call; the name lives in it.
    void giveBlock(Host host, NSString name) const
    {
        auto const literal = objc::block([name = objc::retain(name)](NSInteger times) {
            NSString joined = ""_ns;
            for (NSInteger i = 0; i < times; ++i)
                joined = joined.stringByAppendingString(name);
            return joined;
        });
        host.send<"keepBlock:">(objc::lent(literal));
    }

    // Raises in Foundation: there is no such element. The frame of this function has to be passed.
    objc::handle raise(NSArray array) const
    {
        objc::handle const first = array.objectAtIndex(7);
        return first ? first : objc::handle(""_ns);
    }

    CGRect rectOfNil() const { return NSObject().send<"frame", CGRect>(); }

    // Through the C++ library, without one on the phone.
    NSString reversed(NSString text) const
    {
        std::vector<std::string> letters;
        for (char const* letter = text.UTF8String(); *letter; ++letter)
            letters.insert(letters.begin(), std::string(1, *letter));
        std::string joined;
        for (std::string const& letter : letters)
            joined += letter;
        return NSString::stringWithUTF8String((joined + std::to_string(letters.size())).c_str());
    }
};

__attribute__((constructor)) void start()
{
    objc::define<Probe>()
        .property<"title", NSString>(objc::strong)
        .property<"isOn", BOOL>()
        .property<"frame", CGRect>()
        .method<"negate:", &Probe::negate>()
        .method<"add:to:", &Probe::addShorts>()
        .method<"callTwice:", &Probe::callTwice>()
        .method<"giveBlockTo:name:", &Probe::giveBlock>()
        .method<"raise:", &Probe::raise>()
        .method<"rectOfNil", &Probe::rectOfNil>()
        .method<"reversed:", &Probe::reversed>()
        .install();
    auto const [replacement, original] = objc::hook<LayoutFlip>();
    MSHookMessageEx(
        Host::cls().get(), sel_registerName("layout:flip:"), objc::boundary::leaving(replacement), original);
}

}
