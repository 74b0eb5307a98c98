#pragma once

#include <QByteArray>
#include <QString>

/**
 * Decodes UTF-8 text that ends at the first zero byte, or at the end of the bytes where there is none.
 * Fixed-width fields of the link and texts inside media tags are stored this way. Malformed sequences become
 * replacement characters.
 */
QString utf8UntilZero(const QByteArray& bytes);
