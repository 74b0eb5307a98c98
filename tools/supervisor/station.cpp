#include "tools/supervisor/station.h"

#include <QFile>
#include <QXmlStreamReader>

Station readStation(const QString& path)
{
    Station station;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return station;
    QXmlStreamReader xml(&file);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QLatin1String("name"))
            station.name = xml.readElementText().simplified();
        else if (xml.name() == QLatin1String("url"))
            station.url = xml.readElementText().simplified();
    }
    return station;
}
