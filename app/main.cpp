#include "app/arguments.h"
#include "app/displayguard.h"
#include "app/dprintf.h"
#include "app/journal.h"
#include "app/qtcompat.h"
#include "app/servicemanager.h"
#include "app/version.h"
#include "mainwindow/mainwindow.h"

#include <QApplication>
#include <QTcpServer>
#include <QTextCodec>
#include <QtDebug>

#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace {

/** Descriptors 0 to 2 belong to the standard streams: were one of them free, the link's socket or a file
 * would get its number, and the log with it. */
void occupyStandardStreams()
{
    int descriptor = STDIN_FILENO;
    while (descriptor >= 0 && descriptor <= STDERR_FILENO)
        descriptor = ::open("/dev/null", O_RDWR);
    if (descriptor > STDERR_FILENO)
        ::close(descriptor);
}

/** One message of three items, each followed by one blank. */
void printBanner()
{
    qDebug().nospace() << "**********************************\n"
                       << " "
                       << "vireo " << vireoVersion << " Ticker updated\n"
                       << " "
                       << "**********************************"
                       << " ";
}

/** One line a level that is printed; what stands at the level of errors is none. */
void announceThreshold()
{
    const JournalInformation noError;
    DPRINTF(4, "Will be print 'ERROR MSG'");
    DPRINTF(3, "Will be print 'WARNING MSG'");
    DPRINTF(2, "Will be print 'INFO MSG'");
    DPRINTF(1, "Will be print 'VERBOSE MSG'");
    DPRINTF(0, "Will be print 'DUMP MSG'");
}

void reportKoreanFonts()
{
    for (const QString& family : QtCompat::koreanFontFamilies())
        DPRINTF(2, "%s", family.toUtf8().constData());
}

} // namespace

int main(int argc, char** argv)
{
    occupyStandardStreams();
    if (const auto status = Arguments::answerQuestion(argc, argv))
        return *status;
    speakToJournal();
    // A log reader that goes away must not take the panel with it.
    std::signal(SIGPIPE, SIG_IGN);
    // The unit's screen is 320x240 device pixels and a font point the same pixels everywhere.
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi);
    qputenv("QT_ENABLE_HIGHDPI_SCALING", "0");
    // Version 5 of the toolkit takes widget fonts from the display's resolution all the same.
    qputenv("QT_FONT_DPI", "96");
    DisplayGuard display("vireo");
    QApplication application(argc, argv);
    if (const auto status = Arguments::answer(argc, argv))
        return *status;
    display.release();
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));

    debugLevel = Arguments::threshold(argc, argv);
    printBanner();
    announceThreshold();
    reportKoreanFonts();

    ServiceManager serviceManager;
    MainWindow window;
    window.setVisible(true);
    // Where the port is taken the service manager hears nothing and tries again.
    const auto* const link = window.findChild<QTcpServer*>();
    if (link && link->isListening())
        serviceManager.announceReady();
    return QApplication::exec();
}
