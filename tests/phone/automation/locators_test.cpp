// Locators over a screen of elements: predicates, class chains, XPath, names, and the source that they speak of.
#include "phone/automation/class_chain.hpp"
#include "phone/automation/locator.hpp"
#include "phone/automation/source_document.hpp"
#include "phone/automation/xpath.hpp"
#include "tests/phone/automation/sample_screen.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace phone {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Numbers = std::vector<std::size_t>;

constexpr std::size_t kNone = 9999;   // what a refused locator is said to find

Numbers found(std::string const& strategy, std::string const& value, std::size_t start = 0)
{
    auto const locator = Locator::make(strategy, value);
    if (!locator)
        return { kNone };
    auto const numbers = locator->find(sampleScreen(), start);
    return numbers ? *numbers : Numbers { kNone };
}

std::string refusal(std::string const& strategy, std::string const& value)
{
    auto const locator = Locator::make(strategy, value);
    if (!locator)
        return errorName(locator.error().code) + (": " + locator.error().message);
    auto const numbers = locator->find(sampleScreen(), 0);
    return numbers ? "" : errorName(numbers.error().code) + (": " + numbers.error().message);
}

Numbers byPredicate(std::string const& text) { return found("-ios predicate string", text); }
Numbers byChain(std::string const& text, std::size_t start = 0)
{
    return found("-ios class chain", text, start);
}
Numbers byXpath(std::string const& text, std::size_t start = 0) { return found("xpath", text, start); }

TEST(Names, AreTheIdentifierOrElseTheLabel)
{
    EXPECT_THAT(found("accessibility id", "Anna"), ElementsAre(3));
    EXPECT_THAT(found("id", "second"), ElementsAre(6));
    EXPECT_THAT(found("name", "Call Anna"), ElementsAre(11, 12));
    EXPECT_THAT(found("accessibility id", "anna"), IsEmpty());   // exact, and case counts
    EXPECT_THAT(found("accessibility id", ""), IsEmpty());
    EXPECT_THAT(found("accessibility id", "SpringBoard"), ElementsAre(0));   // the start counts too
}

TEST(ClassNames, AreCompletedAndMatchExactly)
{
    EXPECT_THAT(found("class name", "XCUIElementTypeCell"), ElementsAre(3, 6, 8));
    EXPECT_THAT(found("class name", "Button"), ElementsAre(14, 15));
    EXPECT_EQ(found("class name", "XCUIElementTypeAny").size(), 16u);
    EXPECT_THAT(found("class name", "Cel"), IsEmpty());
    EXPECT_THAT(found("class name", "StaticText", 11), ElementsAre(12, 13));
}

TEST(Selectors, OfCssAreTakenInTheFormsThatSeleniumMakesOfNames)
{
    EXPECT_THAT(found("css selector", "*[id=\"Anna\"]"), ElementsAre(3));
    EXPECT_THAT(found("css selector", "*[name=\"Call Anna\"]"), ElementsAre(11, 12));
    EXPECT_THAT(found("css selector", "#second"), ElementsAre(6));
    for (char const* const text : { ".x", "div", "#a b", "*[id=\"a\"", "*[id=a]", "*[id=\"a\"b\"]", "", "#" })
        EXPECT_THAT(refusal("css selector", text), HasSubstr("invalid selector")) << text;
}

TEST(LinkTexts, CompareOneAttribute)
{
    EXPECT_THAT(found("link text", "Anna"), ElementsAre(3));
    EXPECT_THAT(found("partial link text", "label=Call"), ElementsAre(11, 12, 15));
    EXPECT_THAT(refusal("link text", "colour=red"), HasSubstr("colour"));
}

TEST(Strategies, ThatAreUnknownAreRefused)
{
    EXPECT_THAT(refusal("tag name", "x"), HasSubstr("invalid selector"));
    EXPECT_THAT(refusal("", "x"), HasSubstr("invalid selector"));
}

TEST(Predicates, CompareAttributes)
{
    EXPECT_THAT(byPredicate("label == 'Anna'"), ElementsAre(3));
    EXPECT_THAT(byPredicate("name = \"second\""), ElementsAre(6));
    EXPECT_THAT(byPredicate("type == 'XCUIElementTypeCell' AND visible == 1"), ElementsAre(3, 6));
    EXPECT_THAT(byPredicate("type == 'XCUIElementTypeCell' AND visible == false"), ElementsAre(8));
    EXPECT_THAT(byPredicate("selected == YES"), ElementsAre(6));
    EXPECT_THAT(byPredicate("selected == 'true'"), ElementsAre(6));
    EXPECT_THAT(byPredicate("type == 'XCUIElementTypeCell' && label == nil"), ElementsAre(6));
    EXPECT_THAT(byPredicate("type == 'XCUIElementTypeCell' AND label != nil"), ElementsAre(3, 8));
    EXPECT_THAT(byPredicate("rect.x == 20 AND rect.width == 64 and rect.height = 84"), ElementsAre(3));
    EXPECT_THAT(byPredicate("x >= 180 AND type ENDSWITH 'Cell'"), ElementsAre(8));
    EXPECT_THAT(byPredicate("wdName == 'Anna'"), ElementsAre(3));
    EXPECT_THAT(byPredicate("'Anna' == label"), ElementsAre(3));
    EXPECT_THAT(byPredicate("type == 'XCUIElementTypeCell' AND index == 2"), ElementsAre(8));
    EXPECT_THAT(byPredicate("value < '6' AND value > '4'"), ElementsAre(9));
}

TEST(Predicates, SearchInTexts)
{
    EXPECT_THAT(byPredicate("label CONTAINS 'nna l'"), ElementsAre(5));
    EXPECT_THAT(byPredicate("label BEGINSWITH 'Call '"), ElementsAre(11, 12));
    EXPECT_THAT(byPredicate("label ENDSWITH[c] 'LABEL'"), ElementsAre(5));
    EXPECT_THAT(byPredicate("label CONTAINS[cd] 'keller'"), ElementsAre(7));
    EXPECT_THAT(byPredicate("label CONTAINS[c] 'keller'"), IsEmpty());
    EXPECT_THAT(byPredicate("label ==[cd] 'CHLOE'"), ElementsAre(8));
    EXPECT_THAT(byPredicate("label LIKE 'A*a'"), ElementsAre(3));
    EXPECT_THAT(byPredicate("label LIKE 'Ca?l'"), ElementsAre(15));
    EXPECT_THAT(byPredicate("label LIKE '+1 5*'"), ElementsAre(13));
    EXPECT_THAT(byPredicate("label MATCHES 'A.+a'"), ElementsAre(3));   // the whole text
    EXPECT_THAT(byPredicate("label MATCHES[c] 'anna|call'"), ElementsAre(3, 15));
    EXPECT_THAT(
        byPredicate("'Call Anna now' CONTAINS label AND type == 'XCUIElementTypeAlert'"), ElementsAre(11));
}

TEST(Predicates, KnowListsAndRanges)
{
    EXPECT_THAT(byPredicate("label IN {'Anna', 'Call'}"), ElementsAre(3, 15));
    EXPECT_THAT(byPredicate("(label == 'Anna' OR label == 'Call') AND type IN {'XCUIElementTypeCell'}"),
        ElementsAre(3));
    EXPECT_THAT(byPredicate("type == 'XCUIElementTypeCell' AND x BETWEEN {60, 170}"), ElementsAre(6));
    EXPECT_THAT(byPredicate("label IN 'Annabel' AND type == 'XCUIElementTypeCell'"), ElementsAre(3));
    EXPECT_THAT(byPredicate("label IN {}"), IsEmpty());
}

TEST(Predicates, AreJoinedAsUsual)
{
    EXPECT_THAT(
        byPredicate("NOT type == 'XCUIElementTypeStaticText' AND label == 'Call Anna'"), ElementsAre(11));
    EXPECT_THAT(
        byPredicate("!(type == 'XCUIElementTypeStaticText') && label == 'Call Anna'"), ElementsAre(11));
    EXPECT_THAT(byPredicate("label == 'Anna' || label == 'Call' && FALSEPREDICATE"), ElementsAre(3));
    EXPECT_EQ(byPredicate("TRUEPREDICATE").size(), 16u);
    EXPECT_THAT(byPredicate("FALSEPREDICATE"), IsEmpty());
    EXPECT_THAT(byPredicate("not not label=='Anna'"), ElementsAre(3));
}

TEST(Predicates, ReadTextsWithTheirEscapes)
{
    Element element;
    element.label = "it's \"so\"";
    for (char const* const text : { "label == 'it\\'s \"so\"'", "label == \"it's \\\"so\\\"\"" }) {
        auto const predicate = Predicate::parse(text);
        ASSERT_TRUE(predicate) << text;
        SearchLimit limit;
        EXPECT_TRUE(predicate->matches(element, limit)) << text;
    }
}

TEST(Predicates, WithMistakesSayWhere)
{
    struct Mistake {
        char const* text;
        int position;
    };
    for (auto const& [text, position] : { Mistake { "", 1 }, Mistake { "label", 6 },
             Mistake { "label ==", 9 }, Mistake { "label = 'x", 9 }, Mistake { "colour == 'red'", 1 },
             Mistake { "label == 'x' AND", 17 }, Mistake { "(label == 'x'", 14 },
             Mistake { "label == 'x')", 13 }, Mistake { "label ==[x] 'x'", 10 },
             Mistake { "label ==[] 'x'", 10 }, Mistake { "x BETWEEN {1}", 14 },
             Mistake { "label == {'x'}", 15 }, Mistake { "label MATCHES '('", 18 },
             Mistake { "label MATCHES 5", 16 }, Mistake { "x == 5z", 6 }, Mistake { "name == %@", 9 },
             Mistake { "label IN {'x'", 14 }, Mistake { "label IN {{'x'}}", 11 } }) {
        std::string const told = refusal("-ios predicate string", text);
        EXPECT_THAT(
            told, HasSubstr("invalid selector: predicate, position " + std::to_string(position) + ":"))
            << text;
    }
}

TEST(Predicates, AreLimited)
{
    EXPECT_THAT(refusal("predicate string", std::string(100'000, '(')), HasSubstr("65536"));
    EXPECT_THAT(
        refusal("predicate string", std::string(1000, '(') + "TRUEPREDICATE" + std::string(1000, ')')),
        HasSubstr("brackets"));
    std::string many;
    for (int i = 0; i < 1000; ++i)
        many += "NOT ";
    EXPECT_THAT(refusal("predicate string", many + "TRUEPREDICATE"), HasSubstr("brackets"));
}

TEST(Predicates, EndPatternsThatRunAway)
{
    Element element;
    element.label = std::string(200, 'a') + "!";
    auto const predicate = Predicate::parse("label MATCHES '(a+)+'");
    ASSERT_TRUE(predicate);
    SearchLimit limit;
    EXPECT_FALSE(predicate->matches(element, limit));
    EXPECT_FALSE(limit.wasOver());
}

TEST(Predicates, EndWhenTheirTimeIsOver)
{
    ElementTree tree = sampleScreen();
    for (Element& element : tree.elements)
        element.label = std::string(2000, 'a');
    std::string many = "label MATCHES '(a+)+b'";
    for (int i = 0; i < 2000; ++i)
        many += " OR label MATCHES '(a+)+b'";
    auto const predicate = Predicate::parse(many);
    ASSERT_TRUE(predicate);
    auto const began = std::chrono::steady_clock::now();
    SearchLimit limit(0.1);
    EXPECT_FALSE(predicate->matches(tree[3], limit));
    EXPECT_TRUE(limit.wasOver());
    // One pattern more may run on to its own limit.
    EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::seconds(10));
}

TEST(ClassChains, GoFromParentToChild)
{
    EXPECT_THAT(byChain("XCUIElementTypeWindow"), ElementsAre(1, 10));
    EXPECT_THAT(byChain("XCUIElementTypeWindow[2]/XCUIElementTypeAlert"), ElementsAre(11));
    EXPECT_THAT(byChain("XCUIElementTypeWindow[-1]/*"), ElementsAre(11));
    EXPECT_THAT(byChain("*/*/*"), ElementsAre(3, 6, 8, 12, 13, 14, 15));
    EXPECT_THAT(byChain("**/XCUIElementTypeCell"), ElementsAre(3, 6, 8));
    EXPECT_THAT(byChain("**/XCUIElementTypeCell[2]"), ElementsAre(6));
    EXPECT_THAT(byChain("**/XCUIElementTypeCell[-1]"), ElementsAre(8));
    EXPECT_THAT(byChain("**/XCUIElementTypeCell[4]"), IsEmpty());
    EXPECT_THAT(
        byChain("**/XCUIElementTypeCollectionView/**/XCUIElementTypeStaticText"), ElementsAre(5, 7, 9));
    EXPECT_THAT(byChain("XCUIElementTypeStaticText", 3), ElementsAre(5));
    EXPECT_THAT(byChain("**/XCUIElementTypeAny[1]"), ElementsAre(1));
}

TEST(ClassChains, FilterByPredicates)
{
    EXPECT_THAT(byChain("**/XCUIElementTypeCell[`label == 'Anna'`]"), ElementsAre(3));
    EXPECT_THAT(byChain("**/XCUIElementTypeCell[$label == 'Kéller'$]"), ElementsAre(6));
    EXPECT_THAT(byChain("**/XCUIElementTypeCell[$type == 'XCUIElementTypeStaticText'$][`visible == 1`][2]"),
        ElementsAre(6));
    EXPECT_THAT(byChain("**/XCUIElementTypeCell[`label == 'Anna'`]/XCUIElementTypeImage"), ElementsAre(4));
    EXPECT_THAT(byChain("**/*[`label BEGINSWITH 'Call'`][`type CONTAINS 'Button'`]"), ElementsAre(15));
    EXPECT_THAT(byChain("**/*[`label == 'a``b'`]"), IsEmpty());
}

TEST(ClassChains, TakeTheFormsThatTestersWrite)
{
    for (char const* const chain :
        { "*", "**/*/*/XCUIElementTypeButton", "**/XCUIElementTypeButton/**/XCUIElementTypeImage",
            "XCUIElementTypeWindow/XCUIElementTypeButton[3]/*[4]/*[5]/XCUIElementTypeAlert",
            "XCUIElementTypeWindow[-1]",
            "**/XCUIElementTypeTable[`name == 'x'`][10]/**/XCUIElementTypeButton[`value == 'y'`]",
            "**/XCUIElementTypeTable[$type == 'XCUIElementTypeImage' AND name == 'o'$][`value == 'p'`][10]" })
        EXPECT_EQ(refusal("-ios class chain", chain), "") << chain;
}

TEST(ClassChains, EndWhenTheirTimeIsOver)
{
    auto const chain = ClassChain::parse("**/*/**/*");
    ASSERT_TRUE(chain);
    SearchLimit over(0);
    auto const found = chain->find(sampleScreen(), 0, over);
    ASSERT_FALSE(found);
    EXPECT_EQ(found.error().code, ErrorCode::timeout);
}

TEST(ClassChains, RefuseEverythingElse)
{
    for (char const* const chain :
        { "", "/XCUIElementTypeWindow", "XCUIElementTypeWindow/", "*//*", "**", "*/**", "***", "**[1]/*",
            "*[0]", "*[1][2]", "*[1][`visible = 1`]", "XCUIElementTypeCel", "Cell", " XCUIElementTypeCell",
            "XCUIElementTypeCell ", "* /*", "*[1", "*[`visible == 1]", "*[$visible == 1`]", "*[visible = 1]",
            "*[`colour == 1`]", "*[]", "*[1]]", "**/**/*", "*[99999999999]" })
        EXPECT_THAT(refusal("-ios class chain", chain), HasSubstr("invalid selector: class chain, position"))
            << chain;
}

TEST(Xpaths, SearchTheSource)
{
    EXPECT_THAT(byXpath("//XCUIElementTypeCell"), ElementsAre(3, 6, 8));
    EXPECT_THAT(byXpath("/XCUIElementTypeApplication/XCUIElementTypeWindow"), ElementsAre(1, 10));
    EXPECT_THAT(byXpath("//XCUIElementTypeCell[@name='Anna']/XCUIElementTypeStaticText"), ElementsAre(5));
    EXPECT_THAT(byXpath("//*[@label='Call']"), ElementsAre(15));
    EXPECT_THAT(byXpath("(//XCUIElementTypeCell)[2]"), ElementsAre(6));
    EXPECT_THAT(byXpath("//XCUIElementTypeCell[last()]"), ElementsAre(8));
    EXPECT_THAT(byXpath("//XCUIElementTypeAny[@name='XCUIElementTypeAny']"), IsEmpty());
    EXPECT_THAT(byXpath("//XCUIElementTypeAny[@name='Anna']"), ElementsAre(3));
    EXPECT_THAT(byXpath("//XCUIElementTypeCell[contains(@label, 'nn') and @visible='true']"), ElementsAre(3));
    EXPECT_THAT(byXpath("//XCUIElementTypeCell[XCUIElementTypeStaticText[@value='5']]"), ElementsAre(8));
    EXPECT_THAT(byXpath("//XCUIElementTypeButton | //XCUIElementTypeImage"), ElementsAre(4, 14, 15));
    EXPECT_THAT(byXpath("//XCUIElementTypeStaticText[@label='Kéller']/.."), ElementsAre(6));
    EXPECT_THAT(byXpath("//nothing"), IsEmpty());
    EXPECT_THAT(byXpath("/AppiumAUT"), IsEmpty());
}

TEST(Xpaths, StartAtAnElement)
{
    EXPECT_THAT(byXpath(".//XCUIElementTypeStaticText", 11), ElementsAre(12, 13));
    EXPECT_THAT(byXpath("//XCUIElementTypeCell", 11), ElementsAre(3, 6, 8));
    EXPECT_THAT(byXpath("XCUIElementTypeButton[1]", 11), ElementsAre(14));
}

TEST(Xpaths, AreQuickByTheirShape)
{
    for (char const* const text :
        { "//*", "//XCUIElementTypeCell[.//XCUIElementTypeStaticText[@name='a/b::c..']]",
            "/*/*[2]/descendant::* | //a/..", "//*[*[*[@name]]]", "//*[a/b/c and d/e/f]" })
        EXPECT_TRUE(isQuickXpath(text, 100)) << text;
    for (char const* const text :
        { "//*[//*[//*]]", "//*[ancestor::*]", "//*[../*]", "//*[a/b/c/d/e/f/g/h]" })
        EXPECT_FALSE(isQuickXpath(text, 100)) << text;
    EXPECT_FALSE(isQuickXpath("//*", 100'000));
    EXPECT_FALSE(isQuickXpath("//*" + std::string(2000, ' '), 100));
}

// These are searched by a process of their own.
TEST(Xpaths, ThatCouldTakeLongFindTheSame)
{
    EXPECT_THAT(byXpath("//XCUIElementTypeCell[XCUIElementTypeStaticText[../@name='Anna']]"), ElementsAre(3));
    EXPECT_THAT(
        byXpath("XCUIElementTypeButton[preceding-sibling::XCUIElementTypeButton]", 11), ElementsAre(15));
    EXPECT_EQ(byXpath("//*[count(//*[count(//*) > 1]) > 1]").size(), 16u);
    EXPECT_THAT(byXpath("//*[ancestor::nothing]"), IsEmpty());
    EXPECT_THAT(
        refusal("xpath", "//*[../*]/@name"), HasSubstr("invalid selector: this XPath gives attributes"));
    EXPECT_THAT(refusal("xpath", "//*[../*"), HasSubstr("invalid selector: XPath, position"));
}

TEST(Xpaths, EndWhenTheirTimeIsOver)
{
    std::string expression = "//*";
    for (int i = 0; i < 12; ++i)   // sixteen elements to the twelfth
        expression = "//*[count(" + expression + ") > 1]";
    auto const began = std::chrono::steady_clock::now();
    SearchLimit limit(0.2);
    auto const found = findByXpath(sampleScreen(), 0, expression, limit);
    ASSERT_FALSE(found);
    EXPECT_EQ(found.error().code, ErrorCode::timeout);
    EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::seconds(10));
}

TEST(Xpaths, ThatAreMalformedOrGiveNoElementsAreRefused)
{
    for (char const* const text : { "", "//", "//*[", "//*[@a='x]", "//*[foo()]", "@", "///*" })
        EXPECT_THAT(refusal("xpath", text), HasSubstr("invalid selector: XPath, position")) << text;
    for (char const* const text : { "count(//*)", "1 + 1", "'x'", "//*/@name" })
        EXPECT_THAT(refusal("xpath", text), HasSubstr("not elements")) << text;
    EXPECT_THAT(refusal("xpath", std::string("//*\0[1]", 7)), HasSubstr("zero byte"));
    EXPECT_THAT(refusal("xpath", std::string(70'000, '/')), HasSubstr("65536"));
    EXPECT_THAT(refusal("xpath", std::string(20'000, '(')), HasSubstr("invalid selector"));
}

TEST(Sources, ShowEveryElementWithItsAttributesInOrder)
{
    std::string const xml = sourceXml(sampleScreen());
    EXPECT_THAT(xml, testing::StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<AppiumAUT>\n"));
    EXPECT_THAT(xml,
        HasSubstr(
            "<XCUIElementTypeCell type=\"XCUIElementTypeCell\" name=\"Anna\" label=\"Anna\" enabled=\"true\" "
            "visible=\"true\" accessible=\"false\" x=\"20\" y=\"600\" width=\"64\" height=\"84\" index=\"0\" "
            "traits=\"\">"));
    EXPECT_THAT(xml, HasSubstr("value=\"Kéller\""));
    EXPECT_THAT(xml, testing::Not(HasSubstr("hittable")));
    EXPECT_THAT(sourceXml(sampleScreen(),
                    { .hasRoot = true, .without = { "visible" }, .additional = { "hittable" } }),
        testing::AllOf(HasSubstr("hittable=\"true\""), testing::Not(HasSubstr("visible="))));
}

TEST(Sources, LeaveOutWhatXmlForbids)
{
    ElementTree tree = sampleScreen();
    tree.elements[3].label = "a\x01<&\">\xEF\xBF\xBF"
                             "b\n";
    EXPECT_THAT(sourceXml(tree), HasSubstr("label=\"a&lt;&amp;&quot;"));
    EXPECT_THAT(sourceXml(tree), testing::Not(HasSubstr("\xEF\xBF\xBF")));
    EXPECT_THAT(sourceXml(tree), testing::Not(HasSubstr("\x01")));
}

TEST(Sources, ComeAsJsonAndInWords)
{
    Json const json = sourceJson(sampleScreen());
    EXPECT_EQ(json["type"], "XCUIElementTypeApplication");
    EXPECT_EQ(json["children"][0]["children"][0]["children"][0]["label"], "Anna");
    EXPECT_EQ(json["children"][0]["rect"]["width"], 390);
    EXPECT_THAT(
        sourceDescription(sampleScreen()), HasSubstr("      Cell, {{20, 600}, {64, 84}}, label: 'Anna'\n"));
}

TEST(Attributes, AreTextsOnTheWire)
{
    Element const cell = sampleScreen()[3];
    EXPECT_EQ(attributeText(*attributeOf(cell, "visible")), "true");
    EXPECT_EQ(attributeText(*attributeOf(cell, "x")), "20");
    EXPECT_EQ(attributeText(*attributeOf(cell, "rect")), R"({"x":20,"y":600,"width":64,"height":84})");
    EXPECT_EQ(attributeText(*attributeOf(cell, "value")), nullptr);
    EXPECT_EQ(attributeText(*attributeOf(cell, "wdLabel")), "Anna");
    EXPECT_FALSE(attributeOf(cell, "colour"));
    EXPECT_FALSE(attributeOf(cell, "Label"));
    EXPECT_EQ(cell.text(), "Anna");
}

}
}
