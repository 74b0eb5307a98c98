#include "screens/menuform.h"
#include "tests/mainwindow/listing.h"
#include "tests/mainwindow/panel.h"
#include "tests/support/ownport.h"
#include "tests/support/signalrecorder.h"
#include "widgets/pictureflow.h"

#include <QDir>
#include <QHistoryState>
#include <QSignalTransition>
#include <QState>

namespace {

QString latin(const QByteArray& text)
{
    return QString::fromLatin1(text);
}

QString block(const QString& title, const QStringList& lines)
{
    return lines.isEmpty()
        ? QString()
        : title + QStringLiteral("\n    ") + lines.join(QStringLiteral("\n    ")) + QLatin1Char('\n');
}

QString stateLine(const QAbstractState& state)
{
    QString line =
        QStringLiteral("state %1 in %2").arg(state.objectName(), state.parentState()->objectName());
    if (const auto* history = qobject_cast<const QHistoryState*>(&state))
        line += QStringLiteral(" or %1").arg(history->defaultState()->objectName());
    if (const auto* group = qobject_cast<const QState*>(&state); group && group->initialState())
        line += QStringLiteral(" begins with %1").arg(group->initialState()->objectName());
    return line + QLatin1Char('\n');
}

QString transitionLine(const QSignalTransition& transition)
{
    return QStringLiteral("transition %1 on %2 of %3 to %4\n")
        .arg(transition.sourceState()->objectName(), latin(Panel::nameOf(transition)),
             latin(transition.senderObject()->metaObject()->className()),
             transition.targetState()->objectName());
}

QString machineLines(const Panel& panel)
{
    const auto* machine = panel.window.findChild<QStateMachine*>();
    QString text;
    QString transitions;
    for (const QAbstractState* state : machine->findChildren<QAbstractState*>())
        text += stateLine(*state);
    for (const QSignalTransition* transition : machine->findChildren<QSignalTransition*>())
        transitions += transitionLine(*transition);
    return text + QLatin1Char('\n') + transitions;
}

/** The slots that log their signature, of the lines that they and others log. */
QStringList slotsIn(const QStringList& lines)
{
    static const QRegularExpression signature(QStringLiteral("^\\w[\\w ]* \\w+::\\w+\\(.*\\)$"));
    return lines.filter(signature);
}

/** The slots that run on each signal of the parser, but for signals that the machine itself takes. */
QMap<QString, QString> connections(Panel& panel)
{
    QMap<QString, QString> found;
    const QString mode = panel.mode();
    const QMetaObject& meta = PAparser::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QByteArray event = meta.method(i).methodSignature();
        if (panel.leadsAway(event) || event == "sgMenuRequest()") // whose answer tells the mode
            continue;
        const QStringList run = slotsIn(panel.linesOf({event.constData()}));
        if (!run.isEmpty())
            found[QStringLiteral("%1 %2").arg(i - meta.methodOffset(), 2).arg(latin(event))] =
                run.join(QStringLiteral(", "));
        if (panel.mode() != mode)
            panel.bringTo(mode);
    }
    return found;
}

QStringList connectedBeside(const QMap<QString, QString>& always, const QMap<QString, QString>& now)
{
    QStringList lines;
    for (auto it = now.begin(); it != now.end(); ++it)
        if (always.value(it.key()) != it.value())
            lines << it.key().mid(3) + QStringLiteral(": ") + it.value();
    return lines;
}

bool isEntry(const QString& line)
{
    return line.startsWith(QLatin1String("void MainWindow::")) && line.endsWith(QLatin1String("Entered()"));
}

/** What is logged up to the entry of a mode, and from there on. */
struct Passage {
    explicit Passage(const QStringList& logged)
    {
        const QStringList lines = slotsIn(logged);
        const auto entry = std::find_if(lines.begin(), lines.end(), isEntry);
        left = QStringList(lines.begin(), entry);
        entered = QStringList(entry, lines.end());
    }
    QStringList left;
    QStringList entered;
};

QString writtenWord(const UnitRoot& unit)
{
    const QString file = latin(unit.readConf(QStringLiteral("oper_mode.xml")));
    return file.section(QStringLiteral("<type>"), 1).section(QStringLiteral("</type>"), 0, 0);
}

/** The widgets of the window, the lowest first. */
QString stackLines(const Panel& panel)
{
    QStringList names;
    for (const QObject* child : panel.window.centralWidget()->children())
        if (child->isWidgetType())
            names << child->objectName();
    return block(QStringLiteral("stack"), names) + QLatin1Char('\n');
}

QString iconName(const QImage& slide)
{
    const QDir icons(QStringLiteral(":/menuicon/image"));
    for (const QString& name : icons.entryList())
        if (QImage(icons.filePath(name)) == slide)
            return name;
    return {};
}

/** The entries of the menu: the slide of each and the signal of its choice. */
QString menuLines()
{
    MenuForm menu;
    SignalRecorder recorder(&menu);
    const auto* flow = menu.findChild<PictureFlow*>();
    QStringList lines;
    for (int i = 0; i < flow->slideCount(); ++i) {
        menu.setCurrentIdx(MENUIDX(i));
        menu.select_action();
        lines << iconName(flow->slide(i)) + QStringLiteral(": ") + recorder.take().join(QLatin1Char(' '));
    }
    return block(QStringLiteral("menu"), lines) + QLatin1Char('\n');
}

QString modeLines(const QString& mode, const QMap<QString, QString>& always)
{
    Panel panel;
    QStringList lines;
    for (const QByteArray& signal : panel.waysTo().value(mode)) {
        QFile::remove(panel.unit.path(QStringLiteral("/opt/orvane/conf/oper_mode.xml")));
        lines = panel.linesOf({signal.constData()});
    }
    const Passage in(lines);
    QString text = QStringLiteral("\nmode %1\n").arg(mode);
    if (!panel.screens().isEmpty())
        text += QStringLiteral("  shows %1\n").arg(panel.screens().join(QLatin1Char(' ')));
    text += QStringLiteral("  reports %1\n").arg(panel.code());
    text += QStringLiteral("  stands in the menu at %1\n")
                .arg(panel.window.findChild<PictureFlow*>()->centerIndex());
    if (const QString word = writtenWord(panel.unit); !word.isEmpty())
        text += QStringLiteral("  writes %1\n").arg(word);
    text += block(QStringLiteral("  entered"), in.entered);
    text += block(QStringLiteral("  connected"), connectedBeside(always, connections(panel)));
    const bool isAoe = mode == QLatin1String("AOEMode");
    const Passage out(panel.linesOf({isAoe ? "sgDEVICE_USB_FRONT_Enter()" : "sgDEVICE_AOE_Enter()"}));
    return text + block(QStringLiteral("  left"), out.left);
}

QString listing()
{
    Panel panel;
    QString text = stackLines(panel) + menuLines() + machineLines(panel) + QLatin1Char('\n');
    const QStringList modes = panel.waysTo().keys();
    const auto always = connections(panel);
    text += block("connected in every mode", connectedBeside({}, always));
    for (const QString& mode : modes)
        text += modeLines(mode, always);
    return text;
}

} // namespace

/**
 * The mode machine as it is against the accepted listing. A change that is meant is accepted by running this
 * test with VIREO_ACCEPT=1, looking at the difference, and committing it.
 */
class ModeListingTest : public QObject {
    Q_OBJECT

private slots:
    void machineIsAsListed()
    {
        LogCatcher log(5);
        const QString made = listing();
        QFile file(Listing::path());
        if (qEnvironmentVariableIsSet("VIREO_ACCEPT")) {
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(made.toUtf8());
            return;
        }
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QStringList accepted = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
        const QStringList lines = made.split(QLatin1Char('\n'));
        for (int i = 0; i < qMin(lines.size(), accepted.size()); ++i)
            QCOMPARE(lines[i], accepted[i]);
        QCOMPARE(lines.size(), accepted.size());
    }
};

VIREO_PORT_TEST_MAIN(ModeListingTest)
#include "tst_modelisting.moc"
