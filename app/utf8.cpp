#include "app/utf8.h"

QString utf8UntilZero(const QByteArray& bytes)
{
    const auto zero = bytes.indexOf('\0');
    return zero < 0 ? QString::fromUtf8(bytes) : QString::fromUtf8(bytes.constData(), zero);
}
