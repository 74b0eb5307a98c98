#pragma once

/**
 * Where the two supported toolkit versions differ in an interface, this header gives one spelling for both.
 * Nothing else in the tree tests the toolkit's version.
 */

#include <QFontDatabase>
#include <QRunnable>
#include <QStringList>
#include <QTextCodec>
#include <QtGlobal>

#include <functional>

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

/** What the toolkit hands to its pool of threads when it paints, and how that is done. */
#if QT_VERSION >= QT_VERSION_CHECK(6, 6, 0)
using PoolWork = QRunnable*;

inline void run(QRunnable* work)
{
    const bool isOwned = work->autoDelete();
    work->run();
    if (isOwned)
        delete work;
}
#else
using PoolWork = std::function<void()>;

inline void run(const PoolWork& work)
{
    work();
}
#endif

} // namespace QtCompat
