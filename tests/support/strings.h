#pragma once

#include <QMetaMethod>
#include <QStringList>

#include <initializer_list>

/** A list of texts in UTF-8. */
inline QStringList strings(std::initializer_list<const char*> texts)
{
    QStringList result;
    for (const char* text : texts)
        result << QString::fromUtf8(text);
    return result;
}

/** The signatures of the signals and slots that a class itself declares, in order. */
inline QStringList ownMethods(const QMetaObject& type)
{
    QStringList signatures;
    for (int i = type.methodOffset(); i < type.methodCount(); ++i)
        signatures << QString::fromLatin1(type.method(i).methodSignature());
    return signatures;
}
