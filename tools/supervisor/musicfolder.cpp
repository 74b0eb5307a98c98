#include "tools/supervisor/musicfolder.h"

#include "tools/supervisor/bytetext.h"

#include <QFileInfo>

#include <algorithm>
#include <filesystem>

namespace fs = std::filesystem; // the toolkit passes over names that are not UTF-8

namespace {

constexpr int mostFiles = 0xFFFF;
constexpr int mostEntries = 100000; // so that a wrong choice such as "/" comes to an end

constexpr const char* suffixes[] = {".mp3", ".flac", ".ogg"};

bool isMusic(const fs::path& file)
{
    const QByteArray suffix = QByteArray(file.extension().c_str()).toLower();
    return std::any_of(std::begin(suffixes), std::end(suffixes),
                       [&](const char* known) { return suffix == known; });
}

bool standsBefore(const QString& one, const QString& other)
{
    const QFileInfo first(one);
    const QFileInfo second(other);
    if (first.path() != second.path())
        return first.path() < second.path();
    return first.fileName().compare(second.fileName(), Qt::CaseInsensitive) < 0;
}

bool isHidden(const fs::path& path)
{
    return path.filename().native().front() == '.';
}

} // namespace

QStringList musicBelow(const QString& folder)
{
    QStringList files;
    std::error_code error; // what cannot be read is left out
    const fs::path root = fs::absolute(bytesOf(folder).toStdString(), error).lexically_normal();
    fs::recursive_directory_iterator walk(root, fs::directory_options::skip_permission_denied, error);
    int entries = 0;
    for (const fs::recursive_directory_iterator end;
         walk != end && entries < mostEntries && files.size() < mostFiles; walk.increment(error), ++entries) {
        std::error_code gone;
        if (isHidden(walk->path()))
            walk.disable_recursion_pending();
        else if (isMusic(walk->path()) && walk->is_regular_file(gone))
            files << textOf(walk->path().c_str());
    }
    std::sort(files.begin(), files.end(), standsBefore);
    return files;
}
