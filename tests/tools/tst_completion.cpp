#include "tests/support/panelmain.h"

#include <QProcess>

/** The shell's completion of the stand-in's command line, asked as the shell asks. */
class CompletionTest : public QObject {
    Q_OBJECT

private:
    /** What the shell offers for the last word of the line, in order. */
    static QStringList offered(const QString& line)
    {
        const QString script =
            QStringLiteral("source '" VIREO_SOURCE_DIR "/packaging/vireo-supervisor.bash'\n"
                           "COMP_WORDS=(\"$0\" \"$@\"); COMP_CWORD=$#\n"
                           "_vireo_supervisor\n"
                           "printf '%s\\n' \"${COMPREPLY[@]}\"\n");
        QProcess bash;
        bash.start(QStringLiteral("bash"),
                   QStringList{QStringLiteral("-c"), script, QStringLiteral(SUPERVISOR_PROGRAM)}
                       + line.split(QLatin1Char(' ')));
        if (!bash.waitForFinished())
            return {QStringLiteral("no end")};
        QStringList found = QString::fromUtf8(bash.readAllStandardOutput()).split(QLatin1Char('\n'));
        found << QString::fromUtf8(bash.readAllStandardError());
        found.removeAll(QString());
        return found;
    }

private slots:
    void nextWord_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("words");
        const auto row = [](const char* line, const char* words) {
            QTest::newRow(*line ? line : "nothing")
                << QString::fromLatin1(line) << QString::fromLatin1(words);
        };
        row("", "send script");
        row("sc", "script");
        row("--h", "--host --help");
        row("--p", "--port --panel-place");
        row("--port 5001 se", "send");
        row("--port ", "");
        row("send up", "upgrade upgrade-message");
        row("send ex", ""); // stands in scripts alone
        row("send key s", "stop select");
        row("send key long-s", "long-stop long-select");
        row("send key no", "");
        row("send device usb a", "aux aoe");
        row("send mode re", "repeat");
        row("send mode repeat ", "repeat shuffle one all folder");
        row("--port 5001 send --host unit aoe o", "ok over");
        row("send disk-state ", "normal removed");
        row("send level ", "");
        row("send request ", "");
        row("send file ", ""); // the shell's own file names
    }
    void nextWord()
    {
        QFETCH(QString, line);
        QFETCH(QString, words);
        QCOMPARE(offered(line).join(QLatin1Char(' ')), words);
    }
};

VIREO_TEST_MAIN(CompletionTest)
#include "tst_completion.moc"
