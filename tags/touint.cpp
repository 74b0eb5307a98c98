#include "tags/touint.h"

#include <algorithm>

quint32 toUInt(const QByteArray& bytes, bool bigEndian)
{
    const int count = int(std::min<qint64>(bytes.size(), 4));
    quint32 number = 0;
    for (int i = 0; i < count; ++i) {
        const int place = bigEndian ? count - 1 - i : i;
        number |= quint32(quint8(bytes.at(i))) << (place * 8);
    }
    return number;
}
