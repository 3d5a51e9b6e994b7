// Alerts and sheets, as WebDriver speaks of them.
#include "phone/automation/class_chain.hpp"
#include "phone/automation/phone_commands.hpp"
#include "phone/uikit/alert_presentation.hpp"

#include <algorithm>

namespace phone {

namespace {

constexpr char kButton[] = "XCUIElementTypeButton";

CommandError noAlert() { return { ErrorCode::noSuchAlert, "there is no alert and no sheet" }; }

}

Answer<PhoneCommands::AlertOnScreen> PhoneCommands::alert()
{
    UIAlertController const controller = frontMostAlert();
    if (!controller)
        return noAlert();
    AlertOnScreen alert;
    alert.tree = takeSnapshot();
    auto const number = findObject(alert.tree, controller.alertView());
    if (!number)
        return noAlert();
    alert.number = *number;
    alert.isSheet = controller.preferredStyle() == AlertStyle::actionSheet;
    for (std::size_t at = *number + 1; at < alert.tree[*number].end; ++at)
        if (alert.tree[at].type == kButton)
            alert.buttons.push_back(at);
    return alert;
}

Answer<Json> PhoneCommands::alertText(PhoneCommand const&)
{
    auto const alert = this->alert();
    if (!alert)
        return alert.error();
    ElementTree const& tree = alert->tree;
    std::string text;
    bool isFirst = true;
    for (std::size_t at = alert->number + 1; at < tree[alert->number].end;) {
        Element const& element = tree[at];
        if (element.type == kButton) {
            at = element.end;
            continue;
        }
        if (element.type == "XCUIElementTypeStaticText" || element.type == "XCUIElementTypeTextView") {
            text += (isFirst ? "" : "\n") + element.label.value_or("");
            isFirst = false;
        }
        ++at;
    }
    return Json(text);
}

Answer<Json> PhoneCommands::alertSendText(PhoneCommand const& command)
{
    auto const& parameters = command.parameters;
    bool const hasText = (parameters.contains("text") && parameters["text"].is_string())
        || (parameters.contains("value")
            && (parameters["value"].is_string() || parameters["value"].is_array()));
    if (!hasText)
        return invalidArgument("`text` is a text");
    auto const alert = this->alert();
    if (!alert)
        return alert.error();
    return CommandError { ErrorCode::unsupportedOperation, "the alert has no text field" };
}

Answer<Json> PhoneCommands::answerAlert(bool accepts, Json const& label, Json const& settings)
{
    if (!label.is_null() && !label.is_string())
        return invalidArgument("a button's label is a text");
    auto const alert = this->alert();
    if (!alert)
        return alert.error();
    std::optional<std::size_t> button;
    auto const selector = settings.find(accepts ? "acceptAlertButtonSelector" : "dismissAlertButtonSelector");
    if (label.is_string()) {
        auto const& wanted = label.get_ref<std::string const&>();
        auto const at = std::ranges::find_if(alert->buttons,
            [&](std::size_t number) { return alert->tree[number].label.value_or("") == wanted; });
        if (at == alert->buttons.end())
            return CommandError { ErrorCode::invalidElementState,
                "the alert has no button \"" + wanted + "\"" };
        button = *at;
    } else if (selector != settings.end() && selector->is_string() && !selector->get<std::string>().empty()) {
        auto const chain = ClassChain::parse(selector->get<std::string>());
        if (!chain)
            return chain.error();
        SearchLimit limit;
        auto const found = chain->find(alert->tree, alert->number, limit);
        if (!found)
            return found.error();
        if (!found->empty())
            button = found->front();
    }
    if (!button && !alert->buttons.empty())
        button = accepts != alert->isSheet ? alert->buttons.back() : alert->buttons.front();
    if (!button)
        return CommandError { ErrorCode::invalidElementState, "the alert has no button" };
    return tapObject(objc::handle { static_cast<id>(alert->tree[*button].object) });
}

Answer<Json> PhoneCommands::alertAccept(PhoneCommand const& command)
{
    return answerAlert(true, command.parameters.value("name", Json()), command.settings);
}

Answer<Json> PhoneCommands::alertDismiss(PhoneCommand const& command)
{
    return answerAlert(false, command.parameters.value("name", Json()), command.settings);
}

Answer<Json> PhoneCommands::alertButtons()
{
    auto const alert = this->alert();
    if (!alert)
        return alert.error();
    Json labels = Json::array();
    for (std::size_t const button : alert->buttons)
        labels.push_back(alert->tree[button].label.value_or(""));
    return labels;
}

}
