// Which task rows are visible. A visible-row list is a text holding every visible task row between
// two commas of its own (",12,,13,,17,"); the empty text means no filter is in force. Commands that
// write to every task row show all rows first and apply the list again afterwards.
#pragma once

#include <string>
#include <string_view>

// Shows every task row whose ",row," key is in `list` and hides the others; an empty list shows
// every task row. Does nothing when the task table is empty.
void ApplyVisibleRows(std::string_view list);

// The list of the task rows visible on the task sheet now; empty when none is hidden.
std::string VisibleRowsText();

// Shows every task row while a command writes to them, and lays `filter` (the visible-row list in
// force) again when the command ends. Nothing is shown or hidden when no filter is in force.
class AllTaskRowsShown {
  public:
    explicit AllTaskRowsShown(std::string filter);
    ~AllTaskRowsShown();
    AllTaskRowsShown(const AllTaskRowsShown&) = delete;
    AllTaskRowsShown& operator=(const AllTaskRowsShown&) = delete;

  private:
    std::string filter_;
};
