#include "phone/springboard/idle_timer.hpp"

#include <utility>

namespace phone {

IdleTimer::IdleTimer(Clock& clock)
    : m_clock(clock)
{
}

IdleTimer::~IdleTimer() { m_clock.cancel(m_timer); }

void IdleTimer::setDimming(std::function<void(bool)> dimming) { m_dimming = std::move(dimming); }

void IdleTimer::setExpiry(std::function<void()> expired)
{
    m_expired = std::move(expired);
    touch();
}

void IdleTimer::touch()
{
    m_clock.cancel(m_timer);
    m_timer = TimerId::none;
    if (std::exchange(m_isDimmed, false) && m_dimming)
        m_dimming(false);
    if (isDisabled() || !m_expired)
        return;
    m_timer = m_clock.at(kSeconds, 0, [this] { dim(); });
}

void IdleTimer::dim()
{
    m_isDimmed = true;
    if (m_dimming)
        m_dimming(true);
    m_timer = m_clock.at(kDimSeconds, 0, [this] {
        m_timer = TimerId::none;
        m_expired();
    });
}

void IdleTimer::add(std::string const& reason)
{
    ++m_reasons[reason];
    touch();
}

void IdleTimer::remove(std::string const& reason)
{
    m_reasons.erase(reason);
    touch();
}

}
