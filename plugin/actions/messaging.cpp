// Messages and calls in WhatsApp and Telegram.
#include "plugin/actions/current_contact.hpp"
#include "plugin/actions/open_url.hpp"
#include "plugin/actions/siri_call.hpp"
#include "plugin/actions/text_format.hpp"
#include "plugin/strip/cvl_view.hpp"

namespace {

NSString without(NSString text, NSString removed)
{
    return text.stringByReplacingOccurrencesOfString(removed, ""_ns);
}

// The strip goes when the system has answered, whatever the answer.
void openChat(CVLView strip, char const* url, NSString number)
{
    auto const gone = objc::block([strip = objc::retain(strip)](BOOL) { strip->send<"makeBannerGone">(); });
    openURL(filled(url, { number }), lent(gone));
    currentContact().currentPhoneNumber = objc::retain(""_ns);
}

}

void CVLView::msgWA() const
{
    openChat(*this, "whatsapp://send?phone=%@", without(currentContact().currentPhoneNumber, " "_ns));
}

void CVLView::msgTG() const
{
    openChat(*this, "tg://msg?&to=%@", without(without(currentContact().currentPhoneNumber, " "_ns), "-"_ns));
}

void CVLView::callWA() const { send<"callUsingSiri:">(std::int32_t(SiriApp::whatsapp)); }
void CVLView::callTG() const { send<"callUsingSiri:">(std::int32_t(SiriApp::telegram)); }
