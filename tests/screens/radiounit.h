#pragma once

#include "app/dprintf.h"
#include "screens/radiolistform.h"
#include "tests/support/configbytes.h"
#include "tests/support/unitroot.h"

#include <QListView>

#include <optional>

/** What the tests of the station list share: the unit's three files, their contents and the screen. */
namespace Radio {

const QString korean = QString::fromUtf8("서울 방송 <1> & \"2\"");

inline QByteArray entry(const QString& title, const QString& url)
{
    using ConfigBytes::element;
    return "    <entry>\n        " + element("title", title) + "\n        " + element("url", url)
        + "\n    </entry>\n";
}

inline QByteArray channels(const QByteArray& entries)
{
    return ConfigBytes::declaration + "<channels>\n" + entries + "</channels>\n";
}

/** Stations named by a letter and their number: "p0" at "http://p0/". */
inline QByteArray stations(char letter, int count)
{
    QByteArray entries;
    for (int i = 0; i < count; ++i) {
        const QString name = QLatin1Char(letter) + QString::number(i);
        entries += entry(name, QStringLiteral("http://%1/").arg(name));
    }
    return channels(entries);
}

/** radio.xml as the screen writes it. */
inline QByteArray radio(int category, int channel, const QString& url, const QString& name,
                        const QString& enable = QStringLiteral("yes"),
                        const QString& prefix = QStringLiteral("kr"))
{
    using ConfigBytes::element;
    return ConfigBytes::config({element("category", QString::number(category)),
                                element("channels", QString::number(channel)), element("url", url),
                                element("name", name), element("enable", enable), element("prefix", prefix)});
}

inline QByteArray station(int category, int channel)
{
    return radio(category, channel, QStringLiteral("u"), QStringLiteral("n"));
}

/** The log is silent but for what a test catches of it. */
class Unit : public UnitRoot {
public:
    Unit() { debugLevel = 5; }

    void writeRadio(const QByteArray& bytes) const { writeConf(QStringLiteral("radio.xml"), bytes); }
    QByteArray readRadio() const { return readConf(QStringLiteral("radio.xml")); }
    void writePresets(const QByteArray& bytes) const
    {
        writeConf(QStringLiteral("prefix_channels_kr.xml"), bytes);
    }
    void writeUser(const QByteArray& bytes) const { writeConf(QStringLiteral("user_channels.xml"), bytes); }

    /** So many preset and user stations, of which the first is chosen. */
    void writeStations(int presets, int users) const
    {
        writeRadio(station(0, 0));
        writePresets(stations('p', presets));
        writeUser(stations('u', users));
    }
};

class ListScreen : public RadioListForm {
public:
    QListView* view() const { return findChild<QListView*>(QStringLiteral("listView")); }
    QAbstractItemModel* model() const { return view()->model(); }
    int row() const { return view()->currentIndex().row(); }
    int rows() const { return model()->rowCount(); }
    QString title(int at) const { return model()->index(at, 0).data().toString(); }
    QStringList titles() const
    {
        QStringList result;
        for (int at = 0; at < rows(); ++at)
            result << title(at);
        return result;
    }
    void setRow(int at) const { view()->setCurrentIndex(model()->index(at, 0)); }

    /** What the state machine does on entering the list. */
    void enter()
    {
        XMLParse();
        InitList();
        show();
        SetCurrentIndexFromXML();
    }
};

} // namespace Radio
