#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/** Configuration files as the panel writes them. */
namespace ConfigBytes {

const QByteArray declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

inline QByteArray element(const QByteArray& name, const QString& text)
{
    return '<' + name + '>' + text.toHtmlEscaped().toUtf8() + "</" + name + '>';
}

/** A whole file of the given elements. */
inline QByteArray config(const QList<QByteArray>& elements)
{
    QByteArray bytes = declaration + "<config>\n";
    for (const QByteArray& each : elements)
        bytes += "    " + each + '\n';
    return bytes + "</config>\n";
}

} // namespace ConfigBytes
