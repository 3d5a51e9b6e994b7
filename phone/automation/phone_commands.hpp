// PhoneCommands: the commands of a WebDriver session that need the phone. They run in the phone's process, one at a time; sessions
// themselves are elsewhere. Main thread.
#pragma once

#include "phone/automation/element_registry.hpp"
#include "phone/automation/gestures.hpp"
#include "phone/automation/locator.hpp"
#include "phone/automation/phone_command.hpp"
#include "phone/automation/scripts/scripts.hpp"
#include "phone/automation/snapshot.hpp"
#include "phone/screen/renderer.hpp"

#include <functional>
#include <set>

namespace phone {

// Another phone is to take this one's place.
struct NextPhone {
    bool isRestart { false };
    Json bootArguments;   // of `phone: boot`; null for a restart
};

class PhoneCommands final : public ScriptContext {
public:
    // `elementsGiven`: by the phones before this one. passTime lets the phone's time pass.
    PhoneCommands(BootOptions usual, std::uint64_t elementsGiven, Gestures::PassTime passTime);

    // Every error leaves the phone as it was, but for those that say that something took too long.
    Answer<Json> run(PhoneCommand const& command);

    std::optional<NextPhone> const& nextPhone() const { return m_next; }
    void forgetNextPhone() { m_next.reset(); }
    std::uint64_t elementsGiven() const { return m_elements.given(); }

    // ScriptContext
    Answer<objc::handle> objectOfElement(std::string const& id) override;
    void passTime(double seconds) override;
    BootOptions const& usualBootOptions() const override { return m_usual; }
    void boot(Json const& arguments) override;
    void respring() override;

private:
    friend class MobileScripts;
    using Handler = Answer<Json> (PhoneCommands::*)(PhoneCommand const&);
    struct Row {
        char const* name;
        Handler handler;
    };
    static Row const kRows[];

    // Elements
    Json elementObject(void* object);
    // The element with its present attributes; a view that is hidden stands for itself.
    Answer<Element> elementNamed(std::string const& id);
    Answer<std::vector<objc::handle>> search(PhoneCommand const& command, bool wantsOne);
    Answer<Json> findElement(PhoneCommand const&);
    Answer<Json> findElements(PhoneCommand const&);
    Answer<Json> activeElement(PhoneCommand const&);
    Answer<Json> elementText(PhoneCommand const&);
    Answer<Json> elementName(PhoneCommand const&);
    Answer<Json> elementAttribute(PhoneCommand const&);
    Answer<Json> elementRect(PhoneCommand const&);
    Answer<Json> elementDisplayed(PhoneCommand const&);
    Answer<Json> elementEnabled(PhoneCommand const&);
    Answer<Json> elementSelected(PhoneCommand const&);
    Answer<Json> elementClick(PhoneCommand const&);
    Answer<Json> elementSendKeys(PhoneCommand const&);
    Answer<Json> elementClear(PhoneCommand const&);
    Answer<Json> elementScreenshot(PhoneCommand const&);

    // The screen
    Answer<Json> screenshot(PhoneCommand const&);
    Answer<Json> source(PhoneCommand const&);
    Answer<Json> windowRect(PhoneCommand const&);
    Answer<Json> orientation(PhoneCommand const&);
    Answer<Json> setOrientation(PhoneCommand const&);
    Answer<Json> performActions(PhoneCommand const&);
    Answer<Json> releaseActions(PhoneCommand const&);

    // Alerts
    struct AlertOnScreen {
        ElementTree tree;
        std::size_t number { 0 };
        bool isSheet { false };
        std::vector<std::size_t> buttons;   // in the order on screen
    };
    Answer<AlertOnScreen> alert();
    Answer<Json> alertText(PhoneCommand const&);
    Answer<Json> alertSendText(PhoneCommand const&);
    Answer<Json> alertAccept(PhoneCommand const&);
    Answer<Json> alertDismiss(PhoneCommand const&);
    // `label` null: the button that accepts or dismisses by its place, or by the session's setting.
    Answer<Json> answerAlert(bool accepts, Json const& label, Json const& settings);
    Answer<Json> alertButtons();

    Answer<Json> executeScript(PhoneCommand const&);
    Answer<Json> runMobileScript(std::string const& name, Json const& arguments, Json const& settings);

    Answer<CGRect> placeOf(std::string const& element);
    // Scrolls it into view if need be, and answers the point to touch. Nothing may lie above it.
    Answer<CGPoint> touchablePoint(objc::handle object);
    Answer<Json> tapObject(objc::handle object);
    Answer<Json> pictureOf(std::optional<ElementRect> part);
    Answer<Json> waitUntilUnlocked();

    BootOptions m_usual;
    ElementRegistry m_elements;
    Gestures m_gestures;
    Gestures::PassTime m_passTime;
    Renderer m_renderer;
    std::optional<NextPhone> m_next;
    std::set<std::string> m_launched;   // bundle identifiers that run behind
};

}
