#pragma once

/// Each adds the native rows of one group.
void addIniRows();
void addOrderRows();

/// And these the rows that are measured on Windows.
void addHostRows();
void addDescriptionFileRows();  ///< of the group ini
void addStatusRows();
