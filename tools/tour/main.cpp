#include "app/dprintf.h"
#include "mainwindow/mainwindow.h"
#include "tools/tour/contactsheet.h"

#include <QApplication>

#include <cstdio>

namespace {

constexpr int silence = 5;

int fail(const QString& message)
{
    std::fprintf(stderr, "vireo-tour: %s\n", message.toUtf8().constData());
    return 1;
}

bool save(const QDir& folder, const Picture& picture)
{
    return picture.second.save(folder.filePath(picture.first + QStringLiteral(".png")));
}

} // namespace

/** vireo-tour TOUR FOLDER: plays the tour and saves its pictures and a contact sheet in the folder. */
int main(int argc, char** argv)
{
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi);
    qputenv("QT_FONT_DPI", "96");
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3)
        return fail(QStringLiteral("usage: vireo-tour TOUR FOLDER"));
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
    pictures << Picture(QStringLiteral("contact-sheet"), contactSheet(pictures));
    for (const Picture& picture : pictures) {
        if (!save(folder, picture))
            return fail(QStringLiteral("cannot save ") + picture.first + QStringLiteral(".png"));
    }
    std::printf("%d pictures in %s\n", int(pictures.size()), folder.absolutePath().toUtf8().constData());
    return 0;
}
