#include "tests/scenarios/actions.hpp"

#include <algorithm>

namespace phone {

ActionRow const& actionOfTap(int tapCode)
{
    static std::vector<ActionRow> const rows {
        { 0, ActionGroup::call, { "openURL tel:+44207946-0958" }, { "completion yes" } },
        { 1, ActionGroup::messagingApp, { "openURL whatsapp://send?phone=+44207946-0958" },
            { "completion yes" } },
        { 2, ActionGroup::messagingApp, { "openURL tg://msg?&to=+442079460958" }, { "completion yes" } },
        { 3, ActionGroup::messagingApp, { "siri call +44 20 7946-0958 in whatsapp" }, {} },
        { 4, ActionGroup::messagingApp, { "siri call +44 20 7946-0958 in telegram" }, {} },
        { 5, ActionGroup::composer,
            { "canSend MFMessageComposeViewController yes", "hold CVL",
                "MFMessageComposeViewControllerCVL setMessageComposeDelegate:(CVLView)",
                "MFMessageComposeViewControllerCVL setRecipients:([\"+44 20 7946-0958\"])",
                "MFMessageComposeViewControllerCVL becomeFirstResponder()",
                "present MFMessageComposeViewControllerCVL" },
            {} },
        { 6, ActionGroup::call, { "openURL facetime:+44207946-0958", "release CVL" }, { "completion yes" } },
        { 7, ActionGroup::composer,
            { "canSend MFMailComposeViewControllerCVL yes", "hold CVL",
                "MFMailComposeViewControllerCVL setMailComposeDelegate:(CVLView)",
                "MFMailComposeViewControllerCVL setToRecipients:([\"anna@example.com\"])",
                "present MFMailComposeViewControllerCVL" },
            {} },
    };
    return rows.at(static_cast<std::size_t>(tapCode));
}

Effects operator+(Effects first, Effects const& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

std::string versionName(std::string version)
{
    std::ranges::replace(version, '.', '_');
    return "iOS" + version;
}

}
