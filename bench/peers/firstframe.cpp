#include <QCoreApplication>
#include <QEvent>
#include <QFile>
#include <QObject>

#include <cstdlib>
#include <unistd.h>

/**
 * Linked into a program, ends it after its first frame: writes one line when the frame is complete and behind
 * it what /proc says of the memory, so that whoever reads can take the time of the first line.
 */

namespace {

class FirstFrame : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject*, QEvent* event) override
    {
        // The whole frame is painted and flushed by the time that the next event comes.
        if (event->type() == QEvent::Paint && !m_seen) {
            m_seen = true;
            QMetaObject::invokeMethod(
                this, [this] { report(); }, Qt::QueuedConnection);
        }
        return false;
    }

private:
    void report()
    {
        write("first frame\n");
        QFile memory(QStringLiteral("/proc/self/smaps_rollup"));
        if (memory.open(QIODevice::ReadOnly))
            write(memory.readAll());
        std::_Exit(EXIT_SUCCESS);
    }
    static void write(const QByteArray& text)
    {
        if (::write(STDOUT_FILENO, text.constData(), std::size_t(text.size())) < 0)
            std::_Exit(EXIT_FAILURE);
    }

    bool m_seen = false;
};

void watchFirstFrame()
{
    QCoreApplication::instance()->installEventFilter(new FirstFrame(QCoreApplication::instance()));
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(watchFirstFrame)
