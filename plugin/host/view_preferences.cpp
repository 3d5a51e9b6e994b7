#include "plugin/host/view_preferences.hpp"

void OwnedPreferences::assign(viewPreferences const& record)
{
    // Retained before anything is released: the record may hold the very objects that we have.
    if (m_owns == Owns::everything) {
        m_title = objc::retain(record.styleCustomTitle);
        m_font = objc::retain(record.titleFont);
    }
    m_colorTitle = objc::retain(record.colorTitle);
    m_colorContact = objc::retain(record.colorContact);
    m_mainViewColor = objc::retain(record.mainViewColor);
    m_record = record;
}

void OwnedPreferences::releaseAll() { assign({}); }
