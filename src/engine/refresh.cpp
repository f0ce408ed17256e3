#include "engine/refresh.h"

#include "calendar/calendar.h"
#include "gantt/gantt.h"
#include "settings/settings.h"

bool RefreshSettings() {
    LoadCalendarSettings();
    if (!LoadSettings()) {
        return false;
    }
    LoadGanttStyles();
    LoadCalendarDays();
    return true;
}
