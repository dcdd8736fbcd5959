#include "mixer/FaderSlider.h"

#include "tests/support/TempFolder.h"

#include <QFile>
#include <QImage>
#include <QMouseEvent>
#include <QProcess>
#include <QStyle>
#include <QTest>

#include <gtest/gtest.h>

#include <filesystem>
#include <type_traits>

namespace {

class OpenFader : public FaderSlider {
public:
    explicit OpenFader(QWidget* parent = nullptr) : FaderSlider(Qt::Vertical, parent)
    {
        setRange(-600, 60);
        setStyleSheet(QStringLiteral("QSlider { background: #1e1e1e; }"
                                     "QSlider::groove:vertical { background: #222; width: 6px; margin: 30px 0px; }"
                                     "QSlider::handle:vertical { width: 36px; height: 62px; margin: -30px -15px;"
                                     " background: transparent; border: none; }"));
        setHandleDrawSize(36, 62);
        resize(40, 300);
    }

    using FaderSlider::handleHeight;
    using FaderSlider::handlePixmap;
    using FaderSlider::handleWidth;
    using FaderSlider::scaledHandle;
};

class PressCatcher : public QWidget {
public:
    int presses = 0;

protected:
    void mousePressEvent(QMouseEvent*) override { ++presses; }
};

/// First and last row of column `x` that is brighter than groove and ground.
std::pair<int, int> capRows(OpenFader& fader, int x)
{
    const QImage picture = fader.grab().toImage();
    int first = -1;
    int last = -1;
    for (int y = 0; y < picture.height(); ++y) {
        if (qGray(picture.pixel(x, y)) < 80)
            continue;
        first = first < 0 ? y : first;
        last = y;
    }
    return { first, last };
}

int capMiddle(OpenFader& fader)
{
    const auto [first, last] = capRows(fader, 20);
    return (first + last) / 2;
}

/// Runs a copy of the probe from a folder of its own and gives what it prints.
class FaderPicture : public testing::Test {
protected:
    void SetUp() override
    {
        std::filesystem::create_directories(programFolder());
        std::filesystem::copy_file(FADER_PROBE, programFolder() / "probe");
    }

    std::filesystem::path programFolder() const { return folder.path() / "a" / "b" / "c" / "bin"; }

    void put(const std::string& place)
    {
        const std::filesystem::path target = (programFolder() / place).lexically_normal();
        std::filesystem::create_directories(target.parent_path());
        std::filesystem::copy_file(FADER_PICTURE, target);
    }

    struct Probed {
        std::string path; ///< What is found.
        std::string cap; ///< Whether it is there.
        std::string pixels; ///< Of the cap at a draw size of 36 x 62.
    };

    Probed probe(const QString& scale = QStringLiteral("1")) const { return run(programFolder() / "probe", scale); }

    static Probed run(const std::filesystem::path& program, const QString& scale = QStringLiteral("1"))
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_SCALE_FACTOR"), scale);
        process.setProcessEnvironment(environment);
        process.start(QString::fromStdString(program.string()), QStringList());
        EXPECT_TRUE(process.waitForFinished());
        EXPECT_EQ(process.readAllStandardError(), QByteArray()) << "nothing is ever printed";
        const QList<QByteArray> lines = process.readAllStandardOutput().split('\n');
        return { lines.value(0).toStdString(), lines.value(1).toStdString(), lines.value(2).toStdString() };
    }

    std::string inProgramFolder(const std::string& place) const
    {
        return (programFolder() / place).lexically_normal().string();
    }

    TempFolder folder;
};

} // namespace

TEST(FaderSlider, anOrientationAloneIsNoFader)
{
    EXPECT_FALSE((std::is_convertible_v<Qt::Orientation, FaderSlider>));
    EXPECT_TRUE((std::is_constructible_v<FaderSlider, Qt::Orientation>));
}

TEST(FaderCap, isCentredOnTheHandleWithTheSmallerHalfBefore)
{
    EXPECT_EQ(faderCapTopLeft(QPoint(20, 100), QSize(36, 62)), QPoint(3, 70));
    EXPECT_EQ(faderCapTopLeft(QPoint(20, 100), QSize(35, 61)), QPoint(3, 70));
    EXPECT_EQ(faderCapTopLeft(QPoint(20, 100), QSize(1, 1)), QPoint(20, 100));
}

TEST(FaderSlider, startsWithTheLargeDrawSize)
{
    class Plain : public FaderSlider {
    public:
        Plain() : FaderSlider(Qt::Vertical) { }
        using FaderSlider::handleHeight;
        using FaderSlider::handleWidth;
        using FaderSlider::scaledHandle;
    };
    const Plain fader;
    EXPECT_EQ(fader.handleWidth, 40);
    EXPECT_EQ(fader.handleHeight, 70);
    EXPECT_EQ(fader.scaledHandle.size(), QSize(40, 70));
}

TEST(FaderSlider, standsOnFusion)
{
    const FaderSlider fader(Qt::Vertical);
    EXPECT_EQ(fader.style()->name().toLower(), QStringLiteral("fusion"));
}

TEST(FaderSlider, drawSizesBelowOneBecomeOne)
{
    OpenFader fader;
    fader.setHandleDrawSize(0, -5);
    EXPECT_EQ(fader.handleWidth, 1);
    EXPECT_EQ(fader.handleHeight, 1);
    EXPECT_EQ(fader.scaledHandle.size(), QSize(1, 1));
}

TEST(FaderSlider, theCacheHasExactlyTheDrawSize)
{
    OpenFader fader;
    EXPECT_EQ(fader.scaledHandle.size(), QSize(36, 62));
    fader.setHandleDrawSize(90, 10);
    EXPECT_EQ(fader.scaledHandle.size(), QSize(90, 10));
}

TEST(FaderSlider, withoutPictureTheCacheIsEmptyAndPaintingHarmless)
{
    OpenFader fader;
    fader.handlePixmap = QPixmap();
    fader.updateScaledCache();
    EXPECT_TRUE(fader.scaledHandle.isNull());
    const QImage bare = fader.grab().toImage();
    EXPECT_LT(qGray(bare.pixel(10, 150)), 80) << "only groove and ground";
}

TEST(FaderSlider, aLostCacheIsMadeAnewInPainting)
{
    OpenFader fader;
    fader.scaledHandle = QPixmap();
    (void)fader.grab();
    EXPECT_EQ(fader.scaledHandle.size(), QSize(36, 62));
}

TEST(FaderSlider, reloadingBringsThePictureBack)
{
    OpenFader fader;
    fader.handlePixmap = QPixmap();
    fader.updateScaledCache();
    fader.reloadHandlePixmap();
    EXPECT_FALSE(fader.handlePixmap.isNull());
    EXPECT_EQ(fader.scaledHandle.size(), QSize(36, 62));
}

TEST(FaderSlider, theCapStandsAtTheEndsAndBetweenWithTheValue)
{
    OpenFader fader;
    fader.setValue(60);
    EXPECT_LT(std::abs(capMiddle(fader) - 31), 4);
    fader.setValue(-600);
    EXPECT_LT(std::abs(capMiddle(fader) - 269), 4);
    fader.setValue(-270);
    EXPECT_LT(std::abs(capMiddle(fader) - 150), 4);
}

TEST(FaderSlider, theCapIsDrawnAtDrawSize)
{
    OpenFader fader;
    fader.setValue(-270);
    const auto [first, last] = capRows(fader, 20);
    // The metal of the picture is 53 of 62 high, and its lower rim is dark.
    EXPECT_GT(last - first, 44);
    EXPECT_LT(last - first, 56);
}

TEST(FaderSlider, aRightPressMovesNothingAndIsLeftToTheParent)
{
    PressCatcher parent;
    OpenFader fader(&parent);
    fader.setValue(0);
    QTest::mouseClick(&fader, Qt::RightButton, {}, QPoint(20, 250));
    EXPECT_EQ(fader.value(), 0);
    EXPECT_FALSE(fader.isSliderDown());
    EXPECT_EQ(parent.presses, 1);
}

TEST(FaderSlider, draggingTheCapMovesTheValue)
{
    OpenFader fader;
    fader.setValue(-270);
    QTest::mousePress(&fader, Qt::LeftButton, {}, QPoint(20, 150));
    EXPECT_TRUE(fader.isSliderDown());
    QMouseEvent move(
        QEvent::MouseMove, QPointF(20, 50), fader.mapToGlobal(QPointF(20, 50)), Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&fader, &move);
    EXPECT_GT(fader.value(), -100);
    QTest::mouseRelease(&fader, Qt::LeftButton, {}, QPoint(20, 50));
    EXPECT_FALSE(fader.isSliderDown());
}

TEST_F(FaderPicture, isLookedForBesideTheProgramFirst)
{
    put("fader.png");
    put("../Resources/fader.png");
    put("../../fader.png");
    put("../../../assets/fader.png");
    put("../../assets/fader.png");
    EXPECT_EQ(probe().path, inProgramFolder("fader.png"));
}

TEST_F(FaderPicture, thenInTheBundle)
{
    put("../Resources/fader.png");
    put("../../fader.png");
    put("../../../assets/fader.png");
    put("../../assets/fader.png");
    EXPECT_EQ(probe().path, inProgramFolder("../Resources/fader.png"));
}

TEST_F(FaderPicture, thenTwoFoldersUp)
{
    put("../../fader.png");
    put("../../../assets/fader.png");
    put("../../assets/fader.png");
    EXPECT_EQ(probe().path, inProgramFolder("../../fader.png"));
}

TEST_F(FaderPicture, thenAmongTheAssetsThreeFoldersUp)
{
    put("../../../assets/fader.png");
    put("../../assets/fader.png");
    EXPECT_EQ(probe().path, inProgramFolder("../../../assets/fader.png"));
}

TEST_F(FaderPicture, thenAmongTheAssetsTwoFoldersUp)
{
    put("../../assets/fader.png");
    const Probed found = probe();
    EXPECT_EQ(found.path, inProgramFolder("../../assets/fader.png"));
    EXPECT_EQ(found.cap, "cap");
}

TEST_F(FaderPicture, isLookedForWhereALinkToTheProgramLeads)
{
    put("fader.png");
    const std::filesystem::path link = folder.path() / "link";
    std::filesystem::create_symlink(programFolder() / "probe", link);
    EXPECT_EQ(run(link).path, inProgramFolder("fader.png"));
}

TEST_F(FaderPicture, missingEverywhereNamesThePlaceBesideTheProgramAndLeavesNoCap)
{
    const Probed found = probe();
    EXPECT_EQ(found.path, inProgramFolder("fader.png"));
    EXPECT_EQ(found.cap, "no cap");
}

TEST_F(FaderPicture, thatIsNoPictureLeavesNoCap)
{
    writeBytes(inProgramFolder("fader.png"), "not a picture");
    EXPECT_EQ(probe().cap, "no cap");
}

TEST_F(FaderPicture, isScaledToThePixelsThatItCoversOnTheScreen)
{
    put("fader.png");
    EXPECT_EQ(probe().pixels, "36 x 62");
    EXPECT_EQ(probe(QStringLiteral("2")).pixels, "72 x 124");
    EXPECT_EQ(probe(QStringLiteral("1.5")).pixels, "54 x 93");
}
