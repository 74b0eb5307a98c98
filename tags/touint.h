#pragma once

#include <QByteArray>

/**
 * The first four bytes, or as many as there are, as one unsigned number: 0 for no bytes, a number of only its
 * own width for a short array. `bigEndian` says that the first byte is the most significant one.
 */
quint32 toUInt(const QByteArray& bytes, bool bigEndian);
