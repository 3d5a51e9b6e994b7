#include "tests/phone/automation/sample_screen.hpp"

namespace phone {

namespace {

class Builder {
public:
    std::size_t open(
        std::string const& type, std::size_t parent, std::string const& label = {}, ElementRect rect = {})
    {
        Element element;
        element.type = "XCUIElementType" + type;
        if (!label.empty())
            element.label = label;
        if (type == "StaticText")
            element.value = element.label;
        element.rect = rect;
        return tree.open(std::move(element), parent);
    }
    void leaf(
        std::string const& type, std::size_t parent, std::string const& label = {}, ElementRect rect = {})
    {
        tree.close(open(type, parent, label, rect));
    }

    ElementTree tree;
};

}

ElementTree sampleScreen()
{
    Builder b;
    ElementRect const screen { 0, 0, 390, 844 };
    std::size_t const application = b.open("Application", 0, "SpringBoard", screen);
    std::size_t const window = b.open("Window", application, "", screen);
    std::size_t const list = b.open("CollectionView", window, "", { 0, 600, 390, 100 });
    std::size_t const anna = b.open("Cell", list, "Anna", { 20, 600, 64, 84 });
    b.leaf("Image", anna, "", { 20, 600, 64, 64 });
    b.leaf("StaticText", anna, "Anna label", { 20, 664, 64, 20 });
    b.tree.close(anna);
    std::size_t const second = b.open("Cell", list, "", { 100, 600, 64, 84 });
    b.tree.elements[second].identifier = "second";
    b.tree.elements[second].isSelected = true;
    b.leaf("StaticText", second, "Kéller", { 100, 664, 64, 20 });
    b.tree.close(second);
    std::size_t const chloe = b.open("Cell", list, "Chloé", { 180, 600, 64, 84 });
    b.tree.elements[chloe].isVisible = false;
    b.leaf("StaticText", chloe, "5", { 180, 664, 64, 20 });
    b.tree.close(chloe);
    b.tree.close(list);
    b.tree.close(window);
    std::size_t const front = b.open("Window", application, "", screen);
    std::size_t const alert = b.open("Alert", front, "Call Anna", { 60, 300, 270, 160 });
    b.leaf("StaticText", alert, "Call Anna", { 60, 310, 270, 20 });
    b.leaf("StaticText", alert, "+1 555", { 60, 330, 270, 20 });
    b.leaf("Button", alert, "Cancel", { 60, 400, 135, 44 });
    b.leaf("Button", alert, "Call", { 195, 400, 135, 44 });
    b.tree.close(alert);
    b.tree.close(front);
    b.tree.close(application);
    return std::move(b.tree);
}

}
