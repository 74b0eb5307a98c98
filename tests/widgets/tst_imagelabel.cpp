#include "tests/support/panelmain.h"
#include "widgets/imagelabel.h"

/** The label that decodes its image when it is first seen. */
class TestImageLabel : public QObject {
    Q_OBJECT

private slots:
    void nothingIsDecodedBeforeItIsSeen();
    void aHiddenLabelOfAShownWindowWaits();
    void beingShownDecodes();
    void aPictureOfAWindowThatWasNeverShownHasTheImage();
    void thePixmapPropertyDecodes();
    void aPixmapSetBeforeTakesTheImagesPlace();
    void aPixmapSetAfterwardsStays();
    void anImageThatDoesNotExistShowsNothing();
    void onlyAnImageThatFillsItsLabelHidesWhatIsBehind_data();
    void onlyAnImageThatFillsItsLabelHidesWhatIsBehind();

private:
    const QString m_path = QStringLiteral(":/Tessaro/image/init/background.png");
    const QImage m_image{m_path};
};

namespace {

QImage imageOf(const ImageLabel& label)
{
    return label.pixmap(Qt::ReturnByValue).toImage();
}

} // namespace

void TestImageLabel::nothingIsDecodedBeforeItIsSeen()
{
    ImageLabel label;
    label.setImage(m_path);
    QCOMPARE(label.image(), m_path);
    QVERIFY(imageOf(label).isNull());
}

void TestImageLabel::aHiddenLabelOfAShownWindowWaits()
{
    QWidget window;
    ImageLabel label(&window);
    label.setImage(m_path);
    label.hide();
    window.show();
    QCoreApplication::processEvents();
    QVERIFY(imageOf(label).isNull());
    label.show();
    QVERIFY(!imageOf(label).isNull());
}

void TestImageLabel::beingShownDecodes()
{
    ImageLabel label;
    label.setImage(m_path);
    label.show();
    QCOMPARE(imageOf(label).convertToFormat(QImage::Format_RGB32),
             m_image.convertToFormat(QImage::Format_RGB32));
    QVERIFY(label.image().isEmpty());
}

void TestImageLabel::aPictureOfAWindowThatWasNeverShownHasTheImage()
{
    ImageLabel label;
    label.setImage(m_path);
    label.resize(m_image.size());
    const QImage picture = label.grab().toImage();
    QCOMPARE(picture.pixelColor(160, 120), m_image.pixelColor(160, 120));
}

void TestImageLabel::thePixmapPropertyDecodes()
{
    ImageLabel label;
    label.setImage(m_path);
    QCOMPARE(label.property("pixmap").value<QPixmap>().size(), m_image.size());
}

void TestImageLabel::aPixmapSetBeforeTakesTheImagesPlace()
{
    QPixmap other(3, 5);
    other.fill(Qt::red);
    ImageLabel label;
    label.setImage(m_path);
    label.setPixmap(other);
    label.show();
    QCOMPARE(imageOf(label).size(), other.size());
}

void TestImageLabel::aPixmapSetAfterwardsStays()
{
    QPixmap other(3, 5);
    other.fill(Qt::red);
    ImageLabel label;
    label.setImage(m_path);
    label.show();
    label.setPixmap(other);
    label.hide();
    label.show();
    QCOMPARE(imageOf(label).size(), other.size());
}

void TestImageLabel::anImageThatDoesNotExistShowsNothing()
{
    ImageLabel label;
    label.setImage(QStringLiteral(":/no/such/image.png"));
    label.show();
    QVERIFY(imageOf(label).isNull());
}

void TestImageLabel::onlyAnImageThatFillsItsLabelHidesWhatIsBehind_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("hides");
    const QString mode = QStringLiteral(":/Tessaro/image/special_state/all.png");
    QTest::newRow("the ground of a screen") << m_path << m_image.size() << true;
    QTest::newRow("a label larger than its image shows what is behind") << m_path << QSize(321, 240) << false;
    QTest::newRow("an icon is seen through") << mode << QImage(mode).size() << false;
}

void TestImageLabel::onlyAnImageThatFillsItsLabelHidesWhatIsBehind()
{
    QFETCH(QString, path);
    QFETCH(QSize, size);
    ImageLabel label;
    label.setImage(path);
    label.resize(size);
    label.show();
    QTEST(label.testAttribute(Qt::WA_OpaquePaintEvent), "hides");
}

VIREO_TEST_MAIN(TestImageLabel)
#include "tst_imagelabel.moc"
