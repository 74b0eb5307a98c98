#include "config/livenetwork.h"
#include "config/unitpaths.h"
#include "fuzz/harness.h"
#include "screens/aoeform.h"
#include "screens/irform.h"
#include "screens/radiolistform.h"
#include "screens/setupform.h"

#include <QFile>
#include <QPixmap>

#include <iterator>

/** The input's first byte chooses a file of the unit, the rest is its content. */

namespace {

QByteArray contentOf(UnitPath file)
{
    QFile written(unitPath(file));
    return written.open(QIODevice::ReadOnly) ? written.readAll() : QByteArray();
}

/** What a screen writes it must read again as it was: written once more, the file is the same. */
template <typename Screen> void checkWritingAgain(Screen& screen, UnitPath file, void (*read)(Screen&))
{
    screen.XMLwriteInfo();
    const QByteArray first = contentOf(file);
    Screen other;
    read(other);
    other.XMLwriteInfo();
    const QByteArray second = contentOf(file);
    if (first != second)
        Harness::report(QStringLiteral("%1\nread and written again:\n%2")
                            .arg(QString::fromUtf8(first), QString::fromUtf8(second)));
}

void readChosenStation(RadioListForm& list)
{
    list.RadioInfoFromXML(unitPath(UnitPath::Radio));
}

void readNetwork(SetupForm& setup)
{
    setup.XMLParse();
}

void showStationList()
{
    RadioListForm list;
    list.XMLParse();
    list.InitList();
    list.SetCurrentIndexFromXML();
    list.grab();
    list.up_action();
    list.down_action();
    list.down_action();
    list.select_action();
    checkWritingAgain<RadioListForm>(list, UnitPath::Radio, readChosenStation);
}

void showStation()
{
    static auto* const radio = new IRForm;
    radio->RadioInfoFromXML(unitPath(UnitPath::Radio));
    radio->grab();
}

void showSettings()
{
    SetupForm setup;
    setup.XMLParse();
    setup.grab();
    checkWritingAgain<SetupForm>(setup, UnitPath::Network, readNetwork);
}

void showConnection()
{
    static auto* const connection = new AOEForm;
    connection->AoeInfoFromXML();
    connection->grab();
}

struct FileRow {
    const char* path;
    void (*show)();
};

constexpr FileRow files[] = {
    {"/opt/orvane/conf/radio.xml", showStationList},
    {"/opt/orvane/conf/prefix_channels_demo.xml", showStationList},
    {"/opt/orvane/conf/user_channels.xml", showStationList},
    {"/opt/orvane/conf/radio.xml", showStation},
    {"/opt/orvane/conf/network.xml", showSettings},
    {"/opt/orvane/conf/version.xml", showSettings},
    {"/etc/resolv.conf", showSettings},
    {"/opt/orvane/conf/aoe_conn.xml", showConnection},
    {"/tmp/sampleRate", showConnection},
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const FileRow& chosen = files[data[0] % std::size(files)];
    Harness::resetUnit();
    Harness::write(Harness::unitFile(QString::fromLatin1(chosen.path)), Harness::bytesOf(data + 1, size - 1));
    chosen.show();
    return 0;
}
