#include "tests/window/WindowFixture.h"

#include <QGroupBox>
#include <QImage>
#include <QSplitter>
#include <QVBoxLayout>

#include <filesystem>

namespace {

class WindowFrame : public WindowFixture { };

TEST_F(WindowFrame, windowHasItsTitleSizeAndTakesDrops)
{
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Metadata Manager - BWF Editor"));
    EXPECT_EQ(window->size(), QSize(1200, 800));
    EXPECT_TRUE(window->acceptDrops());
}

TEST_F(WindowFrame, ofTheButtonsOnlyAddAndClearStartEnabled)
{
    EXPECT_EQ(text("addButton"), "Add...");
    EXPECT_EQ(text("removeFileButton"), "Remove File");
    EXPECT_EQ(text("clearButton"), "Clear");
    EXPECT_EQ(text("soundReportButton"), "Create Sound Report...");
    EXPECT_EQ(text("saveButton"), "Save Changes to Selected Files");
    EXPECT_TRUE(enabled("addButton"));
    EXPECT_FALSE(enabled("removeFileButton"));
    EXPECT_TRUE(enabled("clearButton"));
    EXPECT_FALSE(enabled("soundReportButton"));
    EXPECT_FALSE(enabled("saveButton"));
    EXPECT_EQ(widget<QWidget>("addButton")->toolTip(),
        QStringLiteral("Add WAV files, or folders (all WAVs inside are added)."));
    EXPECT_TRUE(widget<QWidget>("removeFileButton")->toolTip().isEmpty());
    EXPECT_TRUE(widget<QWidget>("clearButton")->toolTip().isEmpty());
    EXPECT_EQ(widget<QWidget>("soundReportButton")->toolTip(),
        QStringLiteral("Create a sound report (PDF / CSV / ALE) from the files above. Add files first."));
}

TEST_F(WindowFrame, splitterStandsOverSaveButton)
{
    auto* layout = qobject_cast<QVBoxLayout*>(window->centralWidget()->layout());
    ASSERT_TRUE(layout);
    ASSERT_EQ(layout->count(), 2);
    EXPECT_EQ(layout->itemAt(0)->widget(), widget<QSplitter>("filesSplitter"));
    EXPECT_EQ(layout->stretch(0), 1);
    EXPECT_EQ(layout->itemAt(1)->widget(), widget<QPushButton>("saveButton"));
    EXPECT_EQ(layout->stretch(1), 0);
    auto* outer = widget<QSplitter>("filesSplitter");
    EXPECT_EQ(qobject_cast<QGroupBox*>(outer->widget(0))->title(), QStringLiteral("Files"));
    EXPECT_EQ(outer->widget(1), widget<QSplitter>("detailSplitter"));
}

TEST_F(WindowFrame, samePathTwiceGivesOneRow)
{
    const QString file = write("a.wav", {});
    window->openFiles({ file, file });
    window->openFiles({ file });
    EXPECT_EQ(table()->rowCount(), 1);
}

TEST_F(WindowFrame, pathsOfOneFileThatAreWrittenDifferentlyAreTwoRows)
{
    window->addFiles({ write("a.wav", {}), path("./a.wav") });
    EXPECT_EQ(column(FileColumn::FileName), (std::vector<std::string>{ "a.wav", "a.wav" }));
}

TEST_F(WindowFrame, pathsThatDifferInCaseAreTwoFiles)
{
    window->openFiles({ write("a.wav", {}), write("A.wav", {}) });
    EXPECT_EQ(column(FileColumn::FileName), (std::vector<std::string>{ "a.wav", "A.wav" }));
}

TEST_F(WindowFrame, rowsStandInTheOrderOfAdding)
{
    window->addFiles({ write("b.wav", {}), write("a.wav", {}) });
    window->addFiles({ write("c.wav", {}), path("a.wav"), write("A.wav", {}) });
    EXPECT_EQ(column(FileColumn::FileName), (std::vector<std::string>{ "b.wav", "a.wav", "c.wav", "A.wav" }));
}

TEST_F(WindowFrame, addingSelectsNothingAndOffersNoSaving)
{
    add("a.wav", { .scene = "1" });
    EXPECT_TRUE(table()->selectedItems().isEmpty());
    EXPECT_FALSE(enabled("saveButton"));
    EXPECT_FALSE(enabled("removeFileButton"));
    EXPECT_EQ(text("currentFileLabel"), kMark);
}

TEST_F(WindowFrame, addingOffersTheReport)
{
    window->addFiles({});
    EXPECT_FALSE(enabled("soundReportButton"));
    add("a.wav", {});
    EXPECT_TRUE(enabled("soundReportButton"));
}

TEST_F(WindowFrame, pathThatCannotBeSizedThrowsAfterTheFilesBeforeItHaveTheirRows)
{
    const QString first = write("a.wav", {});
    EXPECT_THROW(window->openFiles({ first, path("missing.wav") }), std::filesystem::filesystem_error);
    EXPECT_EQ(table()->rowCount(), 1);
    EXPECT_EQ(cell(0, FileColumn::FileName), "a.wav");
}

class Painted : public WindowFixture {
protected:
    Painted()
    {
        add("a.wav", { .scene = "12A" });
        add("b.wav", {});
        window->show();
        QCoreApplication::processEvents();
    }

    static bool hasColour(const QImage& image, const QColor& colour)
    {
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixelColor(x, y) == colour)
                    return true;
            }
        }
        return false;
    }
};

TEST_F(Painted, selectedRowIsPurpleWithWhiteText)
{
    const QRect scene = table()->visualItemRect(table()->item(0, indexOf(FileColumn::Scene)));
    const QImage before = table()->viewport()->grab().toImage();
    EXPECT_EQ(before.pixelColor(scene.right() - 2, scene.center().y()), QColor("#ffffff"));
    select({ 0 });
    const QImage after = table()->viewport()->grab().toImage();
    EXPECT_EQ(after.pixelColor(scene.right() - 2, scene.center().y()), QColor("#9B59B6"));
    EXPECT_TRUE(hasColour(after.copy(scene), QColor("#ffffff")));
    EXPECT_FALSE(hasColour(after.copy(scene), QColor("#111111")));
}

TEST_F(Painted, playButtonIsTransparentOverTheSelection)
{
    // The first row has the focus frame in its play column.
    select({ 1 });
    const QWidget* button = table()->cellWidget(1, 0);
    ASSERT_TRUE(button);
    const QImage image = table()->viewport()->grab().toImage();
    EXPECT_EQ(image.pixelColor(button->geometry().topLeft() + QPoint(3, 3)), QColor("#9B59B6"));
}

TEST_F(Painted, tablesAreWhiteInADarkWindow)
{
    const QImage image = window->grab().toImage();
    EXPECT_EQ(image.pixelColor(2, image.height() - 2), QColor("#1e1e1e"));
    const QPoint inside = tracks()->viewport()->mapTo(window.get(), tracks()->viewport()->rect().center());
    EXPECT_EQ(image.pixelColor(inside), QColor("#ffffff"));
}

TEST_F(Painted, disabledSaveButtonIsGreyOnNearlyBlack)
{
    const auto* button = widget<QPushButton>("saveButton");
    ASSERT_FALSE(button->isEnabled());
    const QImage image = widget<QPushButton>("saveButton")->grab().toImage();
    EXPECT_EQ(image.pixelColor(20, image.height() / 2), QColor("#1a1a1a"));
    EXPECT_TRUE(hasColour(image, QColor("#666666")));
    EXPECT_FALSE(hasColour(image, QColor("#f0f0f0")));
}

} // namespace
