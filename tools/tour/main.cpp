#include "app/displayguard.h"
#include "app/dprintf.h"
#include "mainwindow/mainwindow.h"
#include "tools/tour/contactsheet.h"

#include <QApplication>
#include <QTextStream>

#include <cstdio>
#include <cstring>

namespace {

constexpr int silence = 5;

constexpr char help[] =
    "Usage: vireo-tour TOUR FOLDER\n"
    "\n"
    "Plays the words of the file TOUR to a panel of its own and saves in FOLDER a picture of each\n"
    "named moment, contact-sheet.png of all of them, and the places of the texts. It needs a\n"
    "display; QT_QPA_PLATFORM=offscreen is one.\n";

int fail(const QString& message)
{
    std::fprintf(stderr, "vireo-tour: %s\n", message.toUtf8().constData());
    return 1;
}

bool save(const QDir& folder, const Picture& picture)
{
    return picture.pixmap.save(folder.filePath(picture.name + QStringLiteral(".png")));
}

/** One line a text: the picture's name, then left, top, width and height in pixels. */
bool saveTexts(const QDir& folder, const QList<Picture>& pictures)
{
    QFile file(folder.filePath(QStringLiteral("texts.txt")));
    if (!file.open(QIODevice::WriteOnly))
        return false;
    QTextStream lines(&file);
    for (const Picture& picture : pictures)
        for (const QRect& text : picture.texts)
            lines << picture.name << ' ' << text.x() << ' ' << text.y() << ' ' << text.width() << ' '
                  << text.height() << '\n';
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 2 && std::strcmp(argv[1], "--help") == 0) {
        std::fputs(help, stdout);
        return 0;
    }
    if (argc != 3)
        return fail(QStringLiteral("usage: vireo-tour TOUR FOLDER"));
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi);
    qputenv("QT_FONT_DPI", "96");
    DisplayGuard display("vireo-tour");
    QApplication application(argc, argv);
    display.release();
    const QStringList arguments = QCoreApplication::arguments();
    const Tour tour(arguments.at(1));
    if (!tour.error().isEmpty())
        return fail(tour.error());
    const QDir folder(arguments.at(2));
    if (!folder.mkpath(QStringLiteral(".")))
        return fail(QStringLiteral("cannot make the folder ") + folder.path());

    debugLevel = silence;
    MainWindow window;
    window.show();
    QCoreApplication::processEvents();
    QList<Picture> pictures = tour.walk(window);
    pictures << Picture{QStringLiteral("contact-sheet"), contactSheet(pictures), {}};
    for (const Picture& picture : pictures) {
        if (!save(folder, picture))
            return fail(QStringLiteral("cannot save ") + picture.name + QStringLiteral(".png"));
    }
    if (!saveTexts(folder, pictures))
        return fail(QStringLiteral("cannot save texts.txt"));
    std::printf("%d pictures in %s\n", int(pictures.size()), folder.absolutePath().toUtf8().constData());
    return 0;
}
