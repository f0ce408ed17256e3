// Settings the engine takes as they stand (it checks no value for sense, as the workbook's macros
// expect), but that would make a run from the command line quietly do nothing or too little.
#pragma once

// After the settings are loaded: prints each setting that cannot work, naming its cell and what
// is wrong, and answers whether the run may go on.
bool SettingsAreUsable();

// After the task table is loaded: tells the user when task rows lie past the table's limit,
// which the commands do not see.
void WarnAboutTaskRowsPastTheLimit();
