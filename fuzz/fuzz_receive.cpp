#include "fuzz/harness.h"
#include "link/packet.h"
#include "mainwindow/mainwindow.h"
#include "protocol/paparser.h"
#include "tags/qtagparser.h"
#include "tests/tags/mediabuilder.h"
#include "tools/tour/panelclock.h"

#include <QCoreApplication>
#include <QDir>
#include <QPixmap>
#include <QRegularExpression>

/**
 * The input is what the supervisor sends, to one window that stays. Two marker bytes end a chunk; the byte
 * behind them says how long nothing is sent then.
 */

namespace {

constexpr char chunkEnd[] = "\xFF\xFE";
constexpr int endBytes = 2;
/** Squared and divided, so that the animation's steps and the tickers' turns are both in reach. */
constexpr int pauseDivisor = 16;
constexpr int lastPause = 150;

class Panel {
public:
    Panel()
        : clock(window)
    {
        writeMedia();
        // Names from packets stay in the target's own folder: the machine's files are none of its business.
        auto* const parser = window.findChild<PAparser*>();
        auto* const tags = window.findChild<QTagParser*>();
        QObject::disconnect(parser, &PAparser::sgFileName, tags, &QTagParser::setFile);
        QObject::connect(parser, &PAparser::sgFileName, tags,
                         [tags](QString name) { tags->setFile(media(name)); });
        window.show();
        settle(); // the mode machine starts with the event loop
        calm();
    }

    void receive(const QByteArray& stream)
    {
        for (qsizetype at = 0; at < stream.size();) {
            const auto found = stream.indexOf(chunkEnd, at);
            const auto end = found < 0 ? stream.size() : found;
            window.stackBuff(stream.mid(at, end - at));
            at = end + endBytes;
            if (at < stream.size())
                pause(quint8(stream.at(at++)));
        }
        clock.advance(lastPause);
        window.grab();
        settle();
    }

    /** Back to the player with nothing special on it, wherever the stream has led. */
    void calm()
    {
        // The stream may have left a header that takes what comes next for its data.
        window.stackBuff(QByteArray(2 * PacketHeader::bytes, '\xFF'));
        window.stackBuff(packetOf(Command::UpgradeInfo, wire::UpgradeState::Failed)
                         + packetOf(Command::DiskStat, wire::DiskState::Removed)
                         + packetOf(Command::Device, wire::Source::FrontUsb)
                         + packetOf(Command::Level, 0).repeated(2));
        settle();
        checkPlayerShows();
    }

private:
    static QString media(QString name)
    {
        return Harness::path(QStringLiteral("media/")) + name.replace(QLatin1Char('/'), QLatin1Char('_'));
    }

    static void writeMedia()
    {
        using namespace MediaBuilder;
        const Bytes comments = vorbisComments({"TITLE=노래", "ARTIST=a", "ALBUM=b"});
        Harness::write(media(QStringLiteral("a.mp3")),
                       id3v2(textFrame("TIT2", 3, "title") + pictureFrame("image/png", imageFile("PNG"))));
        Harness::write(media(QStringLiteral("b.flac")), flacStart() + flacBlock(Comment, comments, true));
        Harness::write(media(QStringLiteral("c.ogg")),
                       oggPage({oggIdentification()}) + oggPage({oggComment(comments)}));
        Harness::write(media(QStringLiteral("d")), "RIFF");
        QDir().mkpath(media(QStringLiteral("e")));
    }

    static void settle()
    {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void pause(int length)
    {
        clock.advance(length * length / pauseDivisor);
        settle();
    }

    void checkPlayerShows() const
    {
        for (const auto* screen : window.findChildren<QWidget*>(QRegularExpression(QStringLiteral("^wg_"))))
            if (screen->isHidden() == (screen->objectName() == QLatin1String("wg_USB")))
                Harness::report(QStringLiteral("wrong screen: ") + screen->objectName());
    }

    MainWindow window;
    PanelClock clock;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static auto* const panel = new Panel;
    Harness::resetUnit();
    panel->receive(Harness::bytesOf(data, size));
    panel->calm();
    return 0;
}
