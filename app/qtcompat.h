#pragma once

/**
 * Where the two supported toolkit versions differ in an interface, this header gives one spelling for both.
 * Nothing else in the tree tests the toolkit's version.
 */

#include <QFontDatabase>
#include <QStringList>
#include <QTextCodec>
#include <QtGlobal>

namespace QtCompat {

/** The installed font families that can write Korean. */
inline QStringList koreanFontFamilies()
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return QFontDatabase::families(QFontDatabase::Korean);
#else
    return QFontDatabase().families(QFontDatabase::Korean);
#endif
}

} // namespace QtCompat
