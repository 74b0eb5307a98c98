#pragma once

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>

/**
 * What every fuzz target stands on, ready before its first input: an application that draws into memory,
 * every log line formatted and thrown away, a unit and a media folder of its own, a network of its own with
 * nobody in it, and no way to start a process.
 */
namespace Harness {

/** A file below the target's own temporary folder, whose unit is below "unit". */
QString path(const QString& name);

/** The file of the unit that the panel knows by an absolute path. */
QString unitFile(const QString& absolute);

/** Replaces a file's content; folders on the way to it are made. */
void write(const QString& path, const QByteArray& bytes);

/** Copies the demo's unit over the target's own. */
void resetUnit();

/** Ends the run where the program does not crash but does something wrong. */
[[noreturn]] void report(const QString& what);

inline QByteArray bytesOf(const uint8_t* data, size_t size)
{
    return QByteArray(reinterpret_cast<const char*>(data), int(size));
}

} // namespace Harness
