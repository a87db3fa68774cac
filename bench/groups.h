#pragma once

#include <string>

/// Add the native rows of a group.
void addIniRows();
void addOrderRows();

/// Adds the rows of the group report, natively and on Windows. Their measures' names begin with the prefix.
void addReportRows(const std::string& prefix);

/// Add the rows that are measured on Windows.
void addHostRows();
void addDescriptionFileRows();  ///< those of the group ini
void addStatusRows();
