#include "phone/apps/app_card.hpp"

#include "phone/apps/applications.hpp"
#include "phone/apps/modal_card.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/graphics/app_icon.hpp"
#include "phone/springboard/scene_parts.hpp"

namespace phone {

namespace {

using graphics::Color;

// Points.
constexpr double kIconSide = 84;
constexpr double kMargin = 24;

struct CardViews {
    objc::ref<DrawnView> icon;
    objc::ref<UILabel> name;
    objc::ref<UILabel> subject;
    objc::ref<UILabel> url;
};

objc::ref<UILabel> centred(std::string_view text, double size, double weight, UIColor color)
{
    auto label = makeText(text, size, weight, {});
    label->setTextColor(color);
    label->setTextAlignment(NSInteger(NSTextAlignment::center));
    return label;
}

void layOut(CardViews const& views, CGRect bounds)
{
    double const width = bounds.size.width;
    double const inner = width - 2 * kMargin;
    double const middle = bounds.size.height * 0.42;
    views.icon->setFrame({ { (width - kIconSide) / 2, middle - kIconSide - 18 }, { kIconSide, kIconSide } });
    views.name->setFrame({ { kMargin, middle }, { inner, 30 } });
    views.subject->setFrame({ { kMargin, middle + 44 }, { inner, 34 } });
    double const height = views.url->sizeThatFits({ inner, 10000 }).height;
    views.url->setFrame({ { kMargin, middle + 84 }, { inner, height } });
}

}

objc::ref<UIView> makeAppCard(std::string const& identifier, std::string const& url)
{
    Application const* const known = applicationWithIdentifier(identifier);
    std::string const name = known ? known->name : identifier;
    auto const card = LayoutView::make();
    card->setBackgroundColor(UIColor::systemBackgroundColor());
    identify(card.get(), "application");

    CardViews views;
    views.icon = DrawnView::make({}, [known, name, identifier](DrawContext& context, CGRect bounds) {
        if (known && known->icon)
            graphics::drawAppIcon(context.cairo, *known->icon, toGraphics(bounds));
        else
            graphics::drawLetterIcon(context.cairo, name, identifier, toGraphics(bounds));
    });
    views.name = centred(name, 22, graphics::FontWeight::kSemibold, UIColor::labelColor());
    views.subject = centred(subjectOfUrl(url), 28, graphics::FontWeight::kRegular, UIColor::labelColor());
    views.subject->setAdjustsFontSizeToFitWidth(true);
    views.subject->setMinimumScaleFactor(0.5);
    views.url = centred(url, 13, graphics::FontWeight::kRegular, UIColor::secondaryLabelColor());
    views.url->setNumberOfLines(0);
    // A URL and a number read from left to right in every language.
    for (UILabel const label : { views.subject.get(), views.url.get() })
        label.setSemanticContentAttribute(NSInteger(SemanticContent::forceLeftToRight));

    card->addSubview(views.icon.get());
    for (UILabel const label : { views.name.get(), views.subject.get(), views.url.get() })
        card->addSubview(label);
    card->setLayout([views](CGRect bounds) { layOut(views, bounds); });
    return asBase<UIView>(card);
}

}
