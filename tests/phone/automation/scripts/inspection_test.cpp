// `phone: class`, `phone: libraries` and `phone: views`: what is there, as the runtime and UIKit have it.
#include "tests/phone/automation/scripts/scripts_fixture.hpp"

#include "phone/automation/scripts/class_description.hpp"

#include <algorithm>

namespace phone {

class ScriptInspection : public ScriptsTest {
protected:
    static Json const* row(Json const& rows, char const* key, std::string const& name)
    {
        auto const found = std::ranges::find_if(rows, [&](Json const& each) { return each[key] == name; });
        return found == rows.end() ? nullptr : &*found;
    }
    static Json const* viewOfClass(Json const& tree, std::string const& name)
    {
        if (tree["class"] == name)
            return &tree;
        for (Json const& child : tree["children"])
            if (Json const* const found = viewOfClass(child, name))
                return found;
        return nullptr;
    }
};

TEST_F(ScriptInspection, AClassIsToldAsTheRuntimeHasIt)
{
    boot(usual());
    Json const strip = run("class", R"({"name":"CVLView"})");
    EXPECT_EQ(strip["name"], "CVLView");
    EXPECT_EQ(strip["superclass"], "UIView");
    EXPECT_NE(
        std::ranges::find(strip["protocols"], Json("UICollectionViewDataSource")), strip["protocols"].end());
    Json const* const method = row(strip["methods"], "selector", "buttonPressedAction:");
    ASSERT_TRUE(method);
    EXPECT_EQ(*method, Json::parse(R"({"selector":"buttonPressedAction:","encoding":"v@:@","class":false})"));
    Json const* const ofClass = row(strip["methods"], "selector", "colorWithHexString:");
    ASSERT_TRUE(ofClass);
    EXPECT_EQ((*ofClass)["class"], true);
    Json const* const variable = row(strip["ivars"], "name", "_isViewNonLS");
    ASSERT_TRUE(variable);
    EXPECT_EQ((*variable)["encoding"], "B");
    // What it inherits is its superclass's.
    EXPECT_FALSE(row(strip["methods"], "selector", "alpha"));
    EXPECT_TRUE(row(run("class", R"({"name":"UIView"})")["methods"], "selector", "alpha"));
    EXPECT_EQ(run("class", R"({"name":"NSObject"})")["superclass"], nullptr);
    // What the plug-in added to SpringBoard's class is there.
    auto const added = events("addMethod");
    ASSERT_FALSE(added.empty());
    Json const changed = run("class", Json::object({ { "name", added.front()["class"] } }));
    EXPECT_TRUE(row(changed["methods"], "selector", added.front()["selector"]));
}

TEST_F(ScriptInspection, AMissingClassNamesItsLikes)
{
    boot(usual());
    EXPECT_EQ(refusal("class", R"({"name":"CVLVeiw"})"),
        "invalid argument: there is no class CVLVeiw; near: CVLView");
}

TEST_F(ScriptInspection, EveryClassCanBeTold)
{
    boot(usual());
    auto const names = classNames();
    EXPECT_GT(names.size(), 300u);
    for (std::string const& name : names)
        EXPECT_EQ(classDescription(name)["name"], name);
}

TEST_F(ScriptInspection, LibrariesAreThePluginsLoaded)
{
    BootOptions options = usual();
    options.plugins = { TALKATIVE_PLUGIN };
    boot(options);
    Json const libraries = run("libraries");
    ASSERT_EQ(libraries.size(), 2u);
    EXPECT_EQ(libraries[0]["path"], CORVEL_PLUGIN);
    EXPECT_EQ(libraries[0]["name"], "Corvel");
    EXPECT_EQ(libraries[1]["name"], "talkative");
    EXPECT_NE(
        std::ranges::find(libraries[0]["imports"], Json("MSHookMessageEx")), libraries[0]["imports"].end());
    auto const& needed = libraries[0]["needed"];
    EXPECT_TRUE(std::ranges::any_of(
        needed, [](Json const& name) { return name.get<std::string>().starts_with("libobjc"); }));
    EXPECT_EQ(libraries[0].size(), 4u);
}

TEST_F(ScriptInspection, ViewsAreTheWindowsOrTheTarget)
{
    boot(usual());
    Json const windows = run("views");
    ASSERT_GE(windows.size(), 2u);
    Json const* const found = viewOfClass(windows.back(), "CVLView");
    ASSERT_TRUE(found);
    EXPECT_EQ(run("views", R"({"target":"strip"})"), *found);
    for (char const* const key : { "class", "handle", "frame", "bounds", "center", "transform", "alpha",
             "hidden", "text", "children" })
        EXPECT_TRUE(found->contains(key)) << key;
    EXPECT_EQ(found->size(), 10u);
    EXPECT_EQ(send((*found)["handle"], "self")["handle"], (*found)["handle"]);
    EXPECT_EQ(run("views", R"({"target":null})").size(), windows.size());
    // Texts are where they are shown.
    EXPECT_NE(windows.dump().find("\"text\":\"Anna"), std::string::npos);
}

TEST_F(ScriptInspection, DetailNamesUIKitsProperties)
{
    boot(usual());
    Json const tree = run("views", R"({"target":"strip","detail":true})");
    for (char const* const key : { "backgroundColor", "tintColor", "cornerRadius", "borderWidth",
             "borderColor", "clipsToBounds", "autoresizingMask", "translatesAutoresizingMaskIntoConstraints",
             "userInteractionEnabled", "gestureRecognizers", "constraints", "isAccessibilityElement",
             "accessibilityLabel", "accessibilityHint", "accessibilityIdentifier", "accessibilityTraits" })
        EXPECT_TRUE(tree.contains(key)) << key;
    Json const* const list = viewOfClass(tree, "UICollectionView");
    ASSERT_TRUE(list);
    for (char const* const key : { "pagingEnabled", "showsHorizontalScrollIndicator", "contentSize",
             "contentOffset", "scrollDirection", "dataSource", "delegate" })
        EXPECT_TRUE(list->contains(key)) << key;
    Json const* const button = viewOfClass(tree, "CVLButton");
    ASSERT_TRUE(button);
    for (char const* const key : { "titles", "images", "targets" })
        EXPECT_TRUE(button->contains(key)) << key;
    ASSERT_FALSE((*button)["targets"].empty());
    for (char const* const key : { "target", "action", "events" })
        EXPECT_TRUE((*button)["targets"][0].contains(key)) << key;
    ASSERT_FALSE((*button)["gestureRecognizers"].empty());
    Json const& recognizer = (*button)["gestureRecognizers"][0];
    EXPECT_EQ(recognizer["class"], "UILongPressGestureRecognizer");
    EXPECT_TRUE(recognizer.contains("minimumPressDuration"));
    EXPECT_TRUE(recognizer["targets"][0].contains("action"));
    Json const* const label = viewOfClass(tree, "UILabel");
    ASSERT_TRUE(label);
    for (char const* const key : { "font", "textColor", "textAlignment", "numberOfLines",
             "adjustsFontSizeToFitWidth", "minimumScaleFactor" })
        EXPECT_TRUE(label->contains(key)) << key;
    for (char const* const key : { "name", "size", "weight" })
        EXPECT_TRUE((*label)["font"].contains(key)) << key;
    Json const windows = run("views", R"({"detail":true})");
    for (char const* const key :
        { "windowLevel", "secure", "keyWindow", "rootViewController", "presentedViewController" })
        EXPECT_TRUE(windows[0].contains(key)) << key;
    std::string const all = windows.dump();
    for (char const* const key : { "\"effectStyle\"", "\"arrangedSubviews\"", "\"image\"" })
        EXPECT_NE(all.find(key), all.npos) << key;
}

TEST_F(ScriptInspection, AFontsWeightIsUIKitsNumber)
{
    boot(usual());
    Json const label = send("UILabel", "new")["handle"];
    Json const font = send("UIFont", "systemFontOfSize:weight:", "[15,0.23]");
    std::string const handle = R"([{"handle":")" + font["handle"].get<std::string>() + R"("}])";
    send(label, "setFont:", handle.c_str());
    Json const tree = run("views", Json::object({ { "target", label }, { "detail", true } }));
    EXPECT_DOUBLE_EQ(tree["font"]["weight"].get<double>(), 0.23);
    EXPECT_EQ(tree["font"]["size"], 15.0);
}

TEST_F(ScriptInspection, PresentationIsTheRunningAnimation)
{
    boot(usual());
    // The passcode screen fades in.
    phone().requestUnlock();
    run("advance", R"({"seconds":0.1})");
    Json const view = value("passcode", "view")["handle"];
    EXPECT_EQ(run("views", Json::object({ { "target", view } }))["alpha"], 1.0);
    double const shown =
        run("views", Json::object({ { "target", view }, { "presentation", true } }))["alpha"].get<double>();
    EXPECT_GT(shown, 0.0);
    EXPECT_LT(shown, 1.0);
}

}
