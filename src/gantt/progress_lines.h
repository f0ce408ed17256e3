// The daily progress line over the chart of the task sheet.
#pragma once

// Draws the line of today ("now" of the engine's clock) through the point every ordinary task has
// reached, named after the progress-line template and the day ("ProgressLines20240415"): a line
// drawn earlier the same day is replaced, those of earlier days stay. Recurring tasks ("W"/"M"
// resource codes) add no point. Works on the task table of the last load.
void DrawProgressLines();
