// Birthdays: whether one is today, and the badges that say so.
#include "plugin/strip/contact_button.hpp"
#include "plugin/strip/cvl_view.hpp"
#include "plugin/strip/strip_state.hpp"

// By day and month: the year of birth does not count.
BOOL CVLView::isSameDay(NSDate now, NSDate birthday) const
{
    if (!birthday)
        return false;
    NSCalendar const calendar = NSCalendar::currentCalendar();
    NSDateComponents const today = calendar.components(NSCalendarUnitMonth | NSCalendarUnitDay, now);
    NSDateComponents const born = calendar.components(NSCalendarUnitMonth | NSCalendarUnitDay, birthday);
    return today.day() == born.day() && today.month() == born.month();
}

void CVLView::presentBirthday(NSTimer) const
{
    NSDate const now = NSDate::date();
    NSMutableArray const buttons = stripState().birthdayButtons;
    for (NSUInteger i = 0; i < buttons.count(); ++i) {
        CVLButton const button { buttons.objectAtIndex(i).object };
        BOOL const isToday = send<"isSameDay:otherDay:", BOOL>(now, button.send<"getBirthday", NSDate>());
        button.send<"setCakeHidden:">(BOOL { !isToday });
    }
}
