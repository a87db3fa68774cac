#pragma once

/// Each adds the native rows of one group.
void addIniRows();
