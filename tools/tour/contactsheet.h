#pragma once

#include "tools/tour/tour.h"

/** All pictures on one sheet, four in a row at their own size, each with its name below. */
QPixmap contactSheet(const QList<Picture>& pictures);
