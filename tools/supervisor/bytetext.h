#pragma once

#include <QByteArray>
#include <QString>

/**
 * Text that may hold any bytes, as file names do: each byte that is no UTF-8 stands as one lone surrogate,
 * U+DC80 to U+DCFF, and comes back as that byte.
 */
QString textOf(const QByteArray& bytes);
QByteArray bytesOf(const QString& text);
