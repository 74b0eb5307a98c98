#pragma once

#include <QMetaMethod>
#include <QObject>
#include <QStringList>
#include <QVariant>

/**
 * Records every signal that an object emits, in order, each as "name(arg, arg)". Unlike a spy a signal it
 * keeps the order between different signals.
 */
class SignalRecorder : public QObject {
public:
    explicit SignalRecorder(QObject* sender)
    {
        const QMetaObject* meta = sender->metaObject();
        for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
            if (meta->method(i).methodType() != QMetaMethod::Signal)
                continue;
            m_methods << meta->method(i);
            QMetaObject::connect(sender, i, this,
                                 QObject::staticMetaObject.methodCount() + int(m_methods.size()) - 1);
        }
    }

    QStringList take() { return std::exchange(m_emitted, {}); }
    const QStringList& emitted() const { return m_emitted; }

    int qt_metacall(QMetaObject::Call call, int id, void** arguments) override
    {
        id = QObject::qt_metacall(call, id, arguments);
        if (id < 0 || call != QMetaObject::InvokeMetaMethod)
            return id;
        record(m_methods.at(id), arguments);
        return -1;
    }

private:
    void record(const QMetaMethod& method, void** arguments)
    {
        QStringList texts;
        for (int i = 0; i < method.parameterCount(); ++i)
            texts << textOf(method.parameterType(i), arguments[i + 1]);
        m_emitted << QString::fromLatin1(method.name()) + QLatin1Char('(') + texts.join(QStringLiteral(", "))
                + QLatin1Char(')');
    }
    static QString textOf(int type, const void* value)
    {
        if (type == QMetaType::UChar)
            return QString::number(*static_cast<const unsigned char*>(value));
        if (type == QMetaType::QString)
            return *static_cast<const QString*>(value);
        if (type == QMetaType::QByteArray)
            return QString::fromLatin1(static_cast<const QByteArray*>(value)->toHex());
        if (type == QMetaType::Int)
            return QString::number(*static_cast<const int*>(value));
        return QStringLiteral("?");
    }

    QList<QMetaMethod> m_methods;
    QStringList m_emitted;
};
