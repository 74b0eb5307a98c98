#include "tools/supervisor/musicfolder.h"

#include <QDirIterator>

#include <algorithm>

namespace {

constexpr int mostFiles = 0xFFFF;
constexpr int mostEntries = 100000; // so that a wrong choice such as "/" comes to an end

constexpr const char* suffixes[] = {"mp3", "flac", "ogg"};

bool isMusic(const QFileInfo& file)
{
    const QString suffix = file.suffix().toLower();
    return std::any_of(std::begin(suffixes), std::end(suffixes),
                       [&](const char* known) { return suffix == QLatin1String(known); });
}

bool standsBefore(const QString& one, const QString& other)
{
    const QFileInfo first(one);
    const QFileInfo second(other);
    if (first.path() != second.path())
        return first.path() < second.path();
    return first.fileName().compare(second.fileName(), Qt::CaseInsensitive) < 0;
}

} // namespace

QStringList musicBelow(const QString& folder)
{
    QStringList files;
    QDirIterator walk(folder, QDir::Files, QDirIterator::Subdirectories);
    for (int entries = 0; walk.hasNext() && entries < mostEntries && files.size() < mostFiles; ++entries) {
        walk.next();
        if (isMusic(walk.fileInfo()))
            files << QDir::cleanPath(walk.fileInfo().absoluteFilePath());
    }
    std::sort(files.begin(), files.end(), standsBefore);
    return files;
}
