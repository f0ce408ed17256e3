// The refresh run at the start of the drawing and update commands: settings are never cached
// across commands, so edits on the settings and calendar sheets take effect at the next command.
#pragma once

// Re-reads the calendar settings, the settings record, the Gantt templates and the calendar days,
// in this order. False when the settings cannot be used (the user has been told why); the command
// then stops and changes nothing.
bool RefreshSettings();
