#include "phone/automation/source_document.hpp"

#include "phone/automation/source_nodes.hpp"

#include <algorithm>
#include <sstream>

namespace phone {

namespace {

// In the order in which the source has them.
constexpr char const* kSourceAttributes[] { "type", "value", "name", "label", "enabled", "visible",
    "accessible", "x", "y", "width", "height", "index", "placeholderValue", "traits", "processId", "bundleId",
    "hittable" };

// XML 1.0 has no characters below a space but tab and line ends, and not the last two of its plane.
std::string allowedInXml(std::string const& text)
{
    std::string allowed;
    for (std::size_t i = 0; i < text.size(); ++i) {
        auto const c = static_cast<unsigned char>(text[i]);
        if (c < 0x20 && c != '\t' && c != '\n' && c != '\r')
            continue;
        if (text.compare(i, 3, "\xEF\xBF\xBE") == 0 || text.compare(i, 3, "\xEF\xBF\xBF") == 0) {
            i += 2;
            continue;
        }
        allowed += text[i];
    }
    return allowed;
}

bool contains(std::vector<std::string> const& names, std::string_view name)
{
    return std::ranges::find(names, name) != names.end();
}

Json jsonOf(ElementTree const& tree, std::size_t number)
{
    Element const& element = tree[number];
    Json json = Json::object();
    for (char const* const name :
        { "type", "value", "name", "label", "placeholderValue", "enabled", "visible", "traits" }) {
        AttributeValue const value = attributeOf(element, name).value_or(AttributeValue());
        if (auto const* const flag = std::get_if<bool>(&value))
            json[name] = *flag;
        else
            json[name] = attributeText(value);
    }
    json["rect"] = Json::object({ { "x", element.rect.x }, { "y", element.rect.y },
        { "width", element.rect.width }, { "height", element.rect.height } });
    Json children = Json::array();
    for (std::size_t const child : tree.children(number))
        children.push_back(jsonOf(tree, child));
    if (!children.empty())
        json["children"] = std::move(children);
    return json;
}

}

std::vector<pugi::xml_node> addSourceNodes(
    pugi::xml_node root, ElementTree const& tree, SourceOptions const& options)
{
    std::vector<pugi::xml_node> nodes;
    nodes.reserve(tree.size());
    for (std::size_t number = 0; number < tree.size(); ++number) {
        Element const& element = tree[number];
        pugi::xml_node const parent = number == 0 ? root : nodes[element.parent];
        pugi::xml_node node = pugi::xml_node(parent).append_child(element.type.c_str());
        for (char const* const name : kSourceAttributes) {
            if (contains(options.without, name)
                || (name == std::string_view("hittable") && !contains(options.additional, name)))
                continue;
            auto const value = attributeOf(element, name);
            Json const text = value ? attributeText(*value) : Json();
            if (text.is_string())
                node.append_attribute(name).set_value(
                    allowedInXml(text.get_ref<std::string const&>()).c_str());
        }
        nodes.push_back(node);
    }
    return nodes;
}

std::string sourceXml(ElementTree const& tree, SourceOptions const& options)
{
    pugi::xml_document document;
    pugi::xml_node declaration = document.append_child(pugi::node_declaration);
    declaration.append_attribute("version") = "1.0";
    declaration.append_attribute("encoding") = "UTF-8";
    pugi::xml_node const root = options.hasRoot ? document.append_child("AppiumAUT") : document;
    addSourceNodes(root, tree, options);
    std::ostringstream text;
    document.save(text, "  ", pugi::format_indent, pugi::encoding_utf8);
    return text.str();
}

Json sourceJson(ElementTree const& tree) { return tree.size() ? jsonOf(tree, 0) : Json(); }

std::string sourceDescription(ElementTree const& tree)
{
    std::string text;
    std::vector<std::size_t> depths;
    for (std::size_t number = 0; number < tree.size(); ++number) {
        Element const& element = tree[number];
        depths.push_back(number == 0 ? 0 : depths[element.parent] + 1);
        text += std::string(2 * depths[number], ' ')
            + element.type.substr(std::string("XCUIElementType").size()) + ", {{"
            + std::to_string(element.rect.x) + ", " + std::to_string(element.rect.y) + "}, {"
            + std::to_string(element.rect.width) + ", " + std::to_string(element.rect.height) + "}}";
        if (!element.identifier.empty())
            text += ", identifier: '" + element.identifier + "'";
        if (element.label)
            text += ", label: '" + *element.label + "'";
        if (element.value)
            text += ", value: '" + *element.value + "'";
        text += '\n';
    }
    return text;
}

}
