#include "phone/apps/apps.hpp"

#include "phone/apps/activator.hpp"
#include "phone/apps/app_card.hpp"
#include "phone/apps/call_card.hpp"
#include "phone/apps/cn_contact.hpp"
#include "phone/apps/composers.hpp"
#include "phone/apps/contact_picker.hpp"
#include "phone/apps/layout_view.hpp"
#include "phone/apps/siri_card.hpp"

namespace phone {

void defineApplications()
{
    defineActivator();
    defineLayoutView();
    defineAppCard();
    defineCallCard();
    defineSiriCard();
    defineComposers();
    defineCNContact();
    defineCNContactPickerViewController();
}

void layOutApplications()
{
    layOutCall();
    layOutSiri();
}

}
