#include "config/damageline.h"

#include "app/dprintf.h"
#include "app/limits.h"

#include <QSet>

namespace {

QSet<QString>& logged()
{
    static QSet<QString> files;
    return files;
}

} // namespace

DamageLine::~DamageLine()
{
    if (!m_met)
        logged().remove(m_what);
}

void DamageLine::log(const QString& line)
{
    m_met = true;
    if (logged().contains(m_what))
        return;
    if (logged().size() >= limits::damagedFiles)
        logged().clear();
    logged().insert(m_what);
    DPRINTF(4, "%s", line.toUtf8().constData());
}
