#include "phone/foundation/strings.hpp"
#include "tests/phone/springboard/phone_fixture.hpp"

namespace phone {

namespace {

UIView viewOfClass(UIView view, char const* name)
{
    if (classNameOf(view) == name)
        return view;
    NSArray const subviews = view.subviews();
    for (NSUInteger i = 0; i < subviews.count(); ++i)
        if (UIView const found = viewOfClass(UIView { subviews.objectAtIndex(i).object }, name))
            return found;
    return {};
}

struct CameraCase {
    CGSize screen;
    double width;   // of the camera's cut-out, as measured
};

}

class StatusBarBesideTheCamera : public PhoneTest, public testing::WithParamInterface<CameraCase> {
protected:
    static void expectRoomForTheCamera(bool isLocked)
    {
        BootOptions options = version("16.1");
        options.width = GetParam().screen.width;
        options.height = GetParam().screen.height;
        options.locked = isLocked;
        boot(options);

        UIView bar;
        for (UIWindow const window : phone().windows())
            if (UIView const found = viewOfClass(window, "UIStatusBar_Modern"); found && !window.isHidden())
                bar = found;
        ASSERT_TRUE(bar);
        NSArray const parts = bar.subviews();
        ASSERT_EQ(parts.count(), 2u);
        CGRect const text = UIView { parts.objectAtIndex(0).object }.frame();
        CGRect const signs = UIView { parts.objectAtIndex(1).object }.frame();

        double const width = GetParam().screen.width;
        double const end = (width - GetParam().width) / 2;
        EXPECT_GE(text.origin.x, 8);
        EXPECT_LE(text.origin.x + text.size.width, end - 8);
        EXPECT_NEAR(text.origin.x + text.size.width / 2, end / 2, 0.5);
        EXPECT_GE(signs.origin.x, width - end + 8);
        EXPECT_LE(signs.origin.x + signs.size.width, width - 8);
        EXPECT_NEAR(signs.origin.x + signs.size.width / 2, width - end / 2, 0.5);
    }
};

TEST_P(StatusBarBesideTheCamera, HasRoomOnTheLockScreen) { expectRoomForTheCamera(true); }

TEST_P(StatusBarBesideTheCamera, HasRoomOnTheHomeScreen) { expectRoomForTheCamera(false); }

INSTANTIATE_TEST_SUITE_P(Screens, StatusBarBesideTheCamera,
    testing::Values(CameraCase { { 375, 812 }, 209 }, CameraCase { { 414, 896 }, 209 },
        CameraCase { { 390, 844 }, 162 }, CameraCase { { 428, 926 }, 162 }, CameraCase { { 393, 852 }, 126 },
        CameraCase { { 430, 932 }, 126 }),
    [](auto const& info) { return "Width" + std::to_string(static_cast<int>(info.param.screen.width)); });

}
