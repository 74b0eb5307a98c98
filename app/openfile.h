#pragma once

#include <QIODevice>
#include <QString>

class QFile;

/**
 * Why a path is neither opened nor replaced, or nothing: a FIFO or a device may hold the panel up for ever,
 * and a file in its place may harm the unit.
 */
QString specialFileReason(const QString& path);

/**
 * Opens a file for reading and returns the reason when that fails, nothing when it is open. Only regular
 * files are opened.
 */
QString openToRead(QFile& file, QIODevice::OpenMode mode);
