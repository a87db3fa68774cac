#pragma once

#include <string>

/// Add the native rows of a group.
void addIniRows();
void addOrderRows();

/// Adds the rows of the group report, natively and on Windows. Their measures' names begin with the prefix.
void addReportRows(const std::string& prefix);

/// Adds the rows of the group tool, natively and, with a prefix, some of them on Windows.
void addToolRows(const std::string& prefix);
void addToolStartRows();  ///< natively

/// Add the rows that are measured on Windows.
void addHostRows();
void addDescriptionFileRows();  ///< those of the group ini
void addStatusRows();
