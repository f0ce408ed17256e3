// "Now" for the whole engine. Status reports, progress lines and the task tests compare dates with
// the current date and time; a host may pin that moment (a status date) so that a run is repeatable
// and a project can be reported as of a chosen day.
#pragma once

// The pinned date serial when one is pinned, else the local date and time (to the second).
double NowSerial();

// Pins "now" to `serial`; a value <= 0 unpins it and the local clock is used again.
void PinNow(double serial);
