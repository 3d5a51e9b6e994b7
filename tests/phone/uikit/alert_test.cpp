#include "phone/foundation/strings.hpp"
#include "phone/uikit/alert_presentation.hpp"
#include "tests/phone/uikit/uikit_fixture.hpp"

#include <cmath>

namespace phone::testing {
namespace {

class Alert : public UIKitTest {
protected:
    void SetUp() override
    {
        UIKitTest::SetUp();
        m_root =
            objc::adopt(UIViewController { UIViewController::alloc().send<"init", objc::handle>().object });
        window().setRootViewController(m_root.get());
    }
    UIViewController root() const { return m_root; }

    UIAlertController makeAlert(AlertStyle style, NSString title = "Title"_ns, NSString message = {})
    {
        m_alert =
            objc::retain(UIAlertController::cls()
                             .send<"alertControllerWithTitle:message:preferredStyle:", UIAlertController>(
                                 title, message, style));
        return m_alert;
    }
    UIAlertAction add(char const* title, AlertActionStyle style = AlertActionStyle::standard)
    {
        std::string const name = title;
        auto const action = UIAlertAction::cls().send<"actionWithTitle:style:handler:", UIAlertAction>(
            NSString::stringWithUTF8String(title), style,
            AlertHandler(objc::block([this, name](UIAlertAction) {
                m_chosen.push_back(name);
                m_wasPresentedThen = bool(m_root->presentedViewController());
            })));
        m_alert->addAction(action);
        return action;
    }
    void present()
    {
        root().present(m_alert.get(), /* animated: */ true);
        advance(1);
    }
    UIAlertController alert() const { return m_alert; }
    AlertRow row(char const* title) { return AlertRow { find(alert().view(), title).object }; }
    CGRect onScreen(UIView view) { return view.convertRectToView(view.bounds(), {}); }
    Calls const& chosen() const { return m_chosen; }
    bool wasPresentedThen() const { return m_wasPresentedThen; }
    Calls buttons()
    {
        Calls titles;
        for (UIAlertAction const action : alert().actionsOnScreen())
            titles.push_back(toString(action.title()));
        return titles;
    }

private:
    UIView find(UIView view, std::string const& title)
    {
        if (objc::cast<AlertRow>(view) && toString(view.accessibilityLabel()) == title)
            return view;
        for (UIView const child : view.children()) {
            if (UIView const found = find(child, title))
                return found;
        }
        return {};
    }

    objc::ref<UIViewController> m_root;
    objc::ref<UIAlertController> m_alert;
    Calls m_chosen;
    bool m_wasPresentedThen { false };
};

TEST_F(Alert, SheetStandsAtTheBottomWithCancelApart)
{
    makeAlert(AlertStyle::actionSheet, "Dana - 555"_ns);
    add("Cancel", AlertActionStyle::cancel);
    add("Call Contact");
    add("New SMS Message");
    present();

    CGRect const cancel = onScreen(row("Cancel"));
    CGRect const last = onScreen(row("New SMS Message"));
    EXPECT_EQ(cancel, CGRectMake(8, 667 - 8 - 57, 359, 57));
    EXPECT_EQ(last, CGRectMake(8, 667 - 8 - 57 - 8 - 57, 359, 57));
    EXPECT_EQ(onScreen(row("Call Contact")).origin.y, last.origin.y - 57);
    EXPECT_EQ(buttons(), (Calls { "Call Contact", "New SMS Message", "Cancel" }));
}

TEST_F(Alert, TouchDismissesFirstAndThenCallsTheHandler)
{
    makeAlert(AlertStyle::actionSheet);
    add("Call Contact");
    add("Cancel", AlertActionStyle::cancel);
    present();
    EXPECT_TRUE(root().presentedViewController() == alert());

    CGRect const frame = onScreen(row("Call Contact"));
    tap(center(frame));
    EXPECT_EQ(chosen(), (Calls {}));
    advance(1);

    EXPECT_EQ(chosen(), (Calls { "Call Contact" }));
    EXPECT_FALSE(wasPresentedThen());
    EXPECT_FALSE(root().presentedViewController());
    EXPECT_FALSE(alert().view().window());
}

TEST_F(Alert, TouchBesideASheetIsCancel)
{
    makeAlert(AlertStyle::actionSheet);
    add("Call Contact");
    add("Cancel", AlertActionStyle::cancel);
    present();

    tap({ 180, 60 });
    advance(1);

    EXPECT_EQ(chosen(), (Calls { "Cancel" }));
}

TEST_F(Alert, TouchBesideAnAlertIsNothing)
{
    makeAlert(AlertStyle::alert);
    add("OK");
    present();

    tap({ 180, 60 });
    advance(1);

    EXPECT_EQ(chosen(), (Calls {}));
    EXPECT_TRUE(root().presentedViewController() == alert());
}

TEST_F(Alert, IsAnsweredOnce)
{
    makeAlert(AlertStyle::alert);
    auto const ok = add("OK");
    present();

    alert().choose(ok);
    alert().choose(ok);
    advance(1);

    EXPECT_EQ(chosen(), (Calls { "OK" }));
}

TEST_F(Alert, PutsTwoButtonsSideBySide)
{
    makeAlert(AlertStyle::alert, "Call?"_ns, "A message"_ns);
    add("Call");
    add("Cancel", AlertActionStyle::cancel);
    present();

    CGRect const call = onScreen(row("Call"));
    CGRect const cancel = onScreen(row("Cancel"));
    EXPECT_EQ(call.origin.y, cancel.origin.y);
    EXPECT_EQ(cancel.origin.x, (375 - 270) / 2.0);
    EXPECT_EQ(call.origin.x, cancel.origin.x + 135);
    EXPECT_EQ(call.size, (CGSize { 135, 44 }));
    EXPECT_EQ(buttons(), (Calls { "Cancel", "Call" }));
}

TEST_F(Alert, StacksLongTitlesAndMoreButtons)
{
    makeAlert(AlertStyle::alert);
    add("Cancel", AlertActionStyle::cancel);
    add("A title that is too long for half of it");
    present();
    EXPECT_EQ(onScreen(row("Cancel")).size.width, 270);
    alert().dismiss(false);
    advance(0.1);

    makeAlert(AlertStyle::alert);
    add("One");
    add("Cancel", AlertActionStyle::cancel);
    add("Two");
    present();
    EXPECT_EQ(buttons(), (Calls { "One", "Two", "Cancel" }));
    EXPECT_EQ(onScreen(row("Cancel")).origin.y, onScreen(row("One")).origin.y + 88);
}

TEST_F(Alert, ScrollsASheetWithManyRows)
{
    makeAlert(AlertStyle::actionSheet);
    for (int i = 0; i < 20; ++i)
        add(("Action " + std::to_string(i)).c_str());
    add("Cancel", AlertActionStyle::cancel);
    present();

    EXPECT_GE(minY(onScreen(alert().alertView())), 0);
    CGRect const before = onScreen(row("Action 19"));
    EXPECT_GT(before.origin.y, 667);
    drag({ 180, 500 }, { 180, 100 }, 0.3, 0.3);
    drag({ 180, 500 }, { 180, 100 }, 0.3, 0.3);
    drag({ 180, 500 }, { 180, 100 }, 0.3, 0.3);
    advance(2);
    EXPECT_LT(onScreen(row("Action 19")).origin.y, 600);
    tap(center(onScreen(row("Action 19"))));
    advance(1);

    EXPECT_EQ(chosen(), (Calls { "Action 19" }));
}

TEST_F(Alert, TracesWhatItShows)
{
    makeAlert(AlertStyle::actionSheet, "Dana - 555"_ns);
    auto const call = add("Call Contact");
    add("Cancel", AlertActionStyle::cancel);
    graphics::Bitmap const bitmap = graphics::Bitmap::withPixels(58, 58, 2);
    call.setValue(UIImage::of(bitmap), "image"_ns);
    std::size_t const before = trace().count();
    present();

    Json const event = trace().events(before).at(0);
    EXPECT_EQ(event["kind"], "present");
    EXPECT_EQ(event["style"], 0);
    EXPECT_EQ(event["title"], "Dana - 555");
    EXPECT_TRUE(event["message"].is_null());
    ASSERT_EQ(event["actions"].size(), 2u);
    EXPECT_EQ(event["actions"][0]["title"], "Call Contact");
    EXPECT_EQ(event["actions"][0]["image"]["size"], Json::array({ 29, 29 }));
    EXPECT_EQ(event["actions"][1]["style"], 1);
    EXPECT_TRUE(event["actions"][1]["image"].is_null());
    UIImage const image { call.valueForKey("image"_ns).object };
    EXPECT_EQ(image.size(), (CGSize { 29, 29 }));
}

TEST_F(Alert, ShowsTheIconBeforeTheTitle)
{
    makeAlert(AlertStyle::actionSheet);
    auto const call = add("Call Contact");
    call.setValue(UIImage::of(graphics::Bitmap::withPixels(58, 58, 2)), "image"_ns);
    present();

    UIView icon;
    for (UIView const child : row("Call Contact").children()) {
        if (objc::cast<UIImageView>(child))
            icon = child;
    }
    ASSERT_TRUE(icon);
    EXPECT_EQ(icon.frame(), CGRectMake(16, 14, 29, 29));
}

TEST_F(Alert, RefusesASecondCancel)
{
    makeAlert(AlertStyle::alert);
    add("Cancel", AlertActionStyle::cancel);

    EXPECT_ANY_THROW(add("Also cancel", AlertActionStyle::cancel));
    EXPECT_EQ(alert().actions().count(), 1u);
}

TEST_F(Alert, WithoutTextsOrActionsShowsUp)
{
    makeAlert(AlertStyle::actionSheet, {});
    present();
    EXPECT_TRUE(alert().view().window());
    tap({ 100, 100 });
    advance(1);

    EXPECT_TRUE(root().presentedViewController() == alert());
    EXPECT_EQ(buttons(), (Calls {}));
}

}
}
