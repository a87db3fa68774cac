#pragma once

/// Each adds the native rows of one group.
void addIniRows();

/// And these the rows that are measured on Windows.
void addHostRows();
void addDescriptionFileRows();  ///< of the group ini
void addStatusRows();
