#include "tests/support/panelmain.h"
#include "tests/tools/supervisorrun.h"

#include <QDir>
#include <QTemporaryDir>

namespace {

const QDir sources(QStringLiteral(VIREO_SOURCE_DIR));

struct Script {
    const char* path;
    const char* wrongWords;
};

constexpr Script scripts[] = {
    {"run", "no-such-folder"},
    {"run", "tools tests"},
    {"test", "qt4"},
    {"test", "default qt5"},
    {"bench.sh", "quik"},
    {"bench.sh", "quick star"},
    {".ci/run", "quick"},
    {"fuzz/run.sh", "ogg"},
    {"fuzz/run.sh", "30 oggs"},
    {"fuzz/minimize.sh", "oggs"},
    {"packaging/cross.sh", ""},
    {"packaging/cross.sh", "mips"},
    {"packaging/make-deb.sh", "vireo"},
    {"packaging/manual-page.sh", "sh"},
    {"packaging/manual-page.sh", "no-such-program no-such-template"},
    {"packaging/sysroot.sh", ""},
    {"packaging/sysroot.sh", "mips"},
    {"packaging/try-distributions.sh", "bookworm buzz"},
    {"packaging/try-panel.sh", ""},
    {"packaging/try-panel.sh", "no-such-program"},
    {"resources/art/render.sh", "URL"},
    {"tests/memcheck.sh", "tst_modes"},
    {"tests/pictures/accept.sh", "start"},
    {"tools/check-tidy.sh", "app"},
    {"tools/demo-unit/music/make-music.sh", "tones"},
    {"tools/readme-pictures.sh", "menu"},
    {"packaging/unit/build.sh", "mips"},
    {"packaging/unit/try.sh", "arm64 quick 5 turntable"},
    {"tools/setup.sh", "build biuld"},
    {"unit", "mips"},
};

/** Stands in front of the programs that install, build or lay out anything; what is called leaves its name.
 */
class Watch {
public:
    Watch()
    {
        for (const char* program : {"apt-get", "cmake", "ctest", "dpkg-query", "git", "mktemp", "sudo"})
            putInFront(QString::fromLatin1(program));
    }
    SupervisorRun run(const char* script, const QStringList& words) const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("PATH"),
                           m_programs.path() + QLatin1Char(':') + qEnvironmentVariable("PATH"));
        environment.insert(QStringLiteral("CALLED"), m_called.path());
        return runProgram(sources.filePath(QString::fromLatin1(script)), words, {}, environment);
    }
    QStringList called() const { return QDir(m_called.path()).entryList(QDir::Files); }

private:
    void putInFront(const QString& program) const
    {
        QFile file(m_programs.filePath(program));
        if (!file.open(QIODevice::WriteOnly))
            qFatal("%s cannot be written", qPrintable(file.fileName()));
        file.write("#!/bin/sh\n: >\"$CALLED/${0##*/}\"\nexit 1\n");
        file.setPermissions(file.permissions() | QFile::ExeOwner);
    }
    QTemporaryDir m_programs;
    QTemporaryDir m_called;
};

} // namespace

/** Each script that people call says how, and does nothing when it is called otherwise. */
class ScriptsTest : public QObject {
    Q_OBJECT

private slots:
    void everyScriptIsHere()
    {
        QStringList known;
        for (const Script& script : scripts)
            known << QString::fromLatin1(script.path);
        for (const char* name : {"fuzz", "packaging", "resources/art", "tests", "tests/pictures", "tools",
                                 "tools/demo-unit/music"}) {
            const QDir folder(sources.filePath(QString::fromLatin1(name)));
            for (const QFileInfo& file :
                 folder.entryInfoList({QStringLiteral("*.sh")}, QDir::Files | QDir::Executable)) {
                const QString path = sources.relativeFilePath(file.filePath());
                QVERIFY2(known.contains(path), qPrintable(path));
            }
        }
    }

    void helpSaysHowItIsCalled_data() { addScripts(); }
    void helpSaysHowItIsCalled()
    {
        QFETCH(QByteArray, path);
        const Watch watch;
        const SupervisorRun run = watch.run(path, {QStringLiteral("--help")});
        QCOMPARE(run.err, QString());
        QCOMPARE(run.exitCode, 0);
        const QString usage =
            QStringLiteral("\nUsage: %1%2")
                .arg(QLatin1String(path.contains('/') ? "" : "./"), QString::fromLatin1(path));
        QVERIFY2(run.out.contains(usage), qPrintable(run.out));
        QCOMPARE(watch.called(), QStringList());
    }

    void wrongWordsAreOneLine_data() { addScripts(); }
    void wrongWordsAreOneLine()
    {
        QFETCH(QByteArray, path);
        QFETCH(QStringList, wrongWords);
        const Watch watch;
        const SupervisorRun run = watch.run(path, wrongWords);
        QCOMPARE(run.out, QString());
        QCOMPARE(run.exitCode, 2);
        QCOMPARE(run.err.count(QLatin1Char('\n')), 1);
        QVERIFY2(run.err.startsWith(QString::fromLatin1(path).section(QLatin1Char('/'), -1)
                                    + QStringLiteral(": ")),
                 qPrintable(run.err));
        QVERIFY2(run.err.endsWith(
                     QStringLiteral("; see %1 --help\n").arg(sources.filePath(QString::fromLatin1(path)))),
                 qPrintable(run.err));
        QCOMPARE(watch.called(), QStringList());
    }

private:
    static void addScripts()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<QStringList>("wrongWords");
        for (const Script& script : scripts)
            QTest::addRow("%s %s", script.path, script.wrongWords)
                << QByteArray(script.path)
                << QString::fromLatin1(script.wrongWords).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    }
};

VIREO_TEST_MAIN(ScriptsTest)
#include "tst_scripts.moc"
