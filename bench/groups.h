#pragma once

#include <string>

/// Each adds the native rows of one group.
void addIniRows();
void addOrderRows();

/// Those of the group report, for both. The prefix is the measures'.
void addReportRows(const std::string& prefix);

/// And these the rows that are measured on Windows.
void addHostRows();
void addDescriptionFileRows();  ///< of the group ini
void addStatusRows();
