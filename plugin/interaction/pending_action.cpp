#include "plugin/interaction/pending_action.hpp"

#include "plugin/interaction/locked_device.hpp"
#include "plugin/strip/cvl_view.hpp"

#include <utility>

namespace {

PendingState g_pending;

bool runsOnLockScreen(PendingAction action)
{
    switch (action) {
    case PendingAction::msgSMS:
    case PendingAction::sndEmail:
    case PendingAction::callPhone:
    case PendingAction::callFacetime:
    case PendingAction::showMenu: return true;
    case PendingAction::none:
    case PendingAction::msgWA:
    case PendingAction::callWA:
    case PendingAction::msgTG:
    case PendingAction::callTG: return false;
    }
    return false;
}

}

PendingState& pendingState() { return g_pending; }

void park(PendingAction action)
{
    if (runsOnLockScreen(action))
        g_pending.stayAtLSFlag = true;
    g_pending.pendingActionCode = action;
    requestUnlock();
}

// A read consumes the code: an action must not run twice, nor at the wrong occasion.
NSInteger CVLView::actionState() const
{
    return static_cast<NSInteger>(std::exchange(g_pending.pendingActionCode, PendingAction::none));
}

void CVLView::resetActionState() const { g_pending.pendingActionCode = PendingAction::none; }
BOOL CVLView::getShouldStayAtLS() const { return g_pending.stayAtLSFlag; }
void CVLView::setShouldStayAtLS(BOOL stays) const { g_pending.stayAtLSFlag = stays; }
