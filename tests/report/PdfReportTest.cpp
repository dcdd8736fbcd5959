#include "report/ReportSettings.h"
#include "report/SoundReportDialog.h"
#include "report/SoundReportDocument.h"
#include "tests/report/ReportFixture.h"
#include "tests/support/CommaLocale.h"

#include <QImage>
#include <QPageLayout>
#include <QPrinter>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextImageFormat>
#include <QTextTable>
#include <QTextTableFormat>

#include <cstdio>

#include <sys/stat.h>

namespace {

TakeInfo monoTake(const std::string& scene, const std::string& take)
{
    TakeInfo info;
    info.filename = "take" + scene + take + ".wav";
    info.scene = scene;
    info.take = take;
    info.duration = 30.0;
    info.frameRate = 25.0;
    info.sampleRate = 48000;
    info.bitDepth = 24;
    info.tracks = { "Mix" };
    info.timecodeIn = "01:02:03:04";
    info.fileDate = QDateTime(QDate(2024, 5, 6), QTime(7, 8));
    return info;
}

std::vector<TakeInfo> monoTakes(int count)
{
    std::vector<TakeInfo> takes;
    for (int i = 1; i <= count; ++i)
        takes.push_back(monoTake("S" + std::to_string(i), std::to_string(i)));
    return takes;
}

/// A composed report and its tables, in the order of the document.
struct Sheet {
    QTextDocument document;
    QList<QTextTable*> tables;

    explicit Sheet(
        const std::vector<TakeInfo>& takes, const ReportSettings& settings = {}, const QString& soundRoll = {})
    {
        composeSoundReport(document, takes, settings, soundRoll);
        for (QTextFrame* frame : document.rootFrame()->childFrames())
            tables.append(qobject_cast<QTextTable*>(frame));
    }

    const QTextTable& takeTable() const { return *tables.last(); }
    const QTextTable& detailTable() const { return *tables[tables.size() - 2]; }

    static QTextCursor start(const QTextTable& table, int row, int column)
    {
        return table.cellAt(row, column).firstCursorPosition();
    }

    static std::string text(const QTextTable& table, int row, int column)
    {
        QTextCursor cursor = start(table, row, column);
        cursor.setPosition(table.cellAt(row, column).lastPosition(), QTextCursor::KeepAnchor);
        return cursor.selectedText().replace(QChar::ParagraphSeparator, '\n').toStdString();
    }

    std::string detail(int row, int column) const { return text(detailTable(), row, column); }
    std::string cell(int row, int column) const { return text(takeTable(), row, column); }

    /// Format of the character `offset` places behind the start of the cell.
    static QTextCharFormat charFormat(const QTextTable& table, int row, int column, int offset = 0)
    {
        QTextCursor cursor = start(table, row, column);
        cursor.setPosition(cursor.position() + offset + 1);
        return cursor.charFormat();
    }
};

QList<QTextLength> percentLengths(std::initializer_list<double> values)
{
    QList<QTextLength> lengths;
    for (const double value : values)
        lengths.append(QTextLength(QTextLength::PercentageLength, value));
    return lengths;
}

void expectFont(const QTextCharFormat& format, int size, int weight)
{
    EXPECT_EQ(format.font().families(), QStringList{ "Calibri" });
    EXPECT_EQ(format.font().pointSize(), size);
    EXPECT_EQ(format.font().weight(), weight);
    EXPECT_EQ(format.font().styleStrategy(), QFont::PreferAntialias);
}

class PdfReport : public ReportFixture {
protected:
    std::string logo(int width, int height)
    {
        QImage image(width, height, QImage::Format_RGB32);
        image.fill(Qt::darkBlue);
        const QString file = path("logo.png");
        EXPECT_TRUE(image.save(file));
        return file.toStdString();
    }

    static QTextImageFormat imageOf(const Sheet& sheet)
    {
        return Sheet::charFormat(*sheet.tables.first(), 0, 1).toImageFormat();
    }

    /// Writes the PDF over `paths` and returns its path.
    QString print(const QList<QString>& paths)
    {
        SoundReportDialog dialog(paths, nullptr);
        EXPECT_TRUE(dialog.generatePdfReport(path("report.pdf")));
        return path("report.pdf");
    }

    static QString textOf(const QString& pdf)
    {
        const CommandResult result = runCommand("pdftotext", { "-layout", pdf, "-" });
        EXPECT_EQ(result.exitCode, 0) << result.err.toStdString();
        return result.out;
    }

    static QString infoOf(const QString& pdf, const QString& key)
    {
        const CommandResult result = runCommand("pdfinfo", { pdf });
        EXPECT_EQ(result.exitCode, 0) << result.err.toStdString();
        for (const QString& line : result.out.split('\n')) {
            if (line.startsWith(key + ':'))
                return line.mid(key.size() + 1).trimmed();
        }
        return {};
    }

    static void expectSound(const QString& pdf)
    {
        const CommandResult check = runCommand("qpdf", { "--check", pdf });
        EXPECT_EQ(check.exitCode, 0) << check.out.toStdString();
        EXPECT_EQ(check.err, "");
        EXPECT_FALSE(check.out.contains("WARNING"));
    }
};

} // namespace

TEST_F(PdfReport, twentyTakesGiveATableOf41Rows)
{
    const Sheet sheet(monoTakes(20));
    EXPECT_EQ(sheet.takeTable().rows(), 41);
    EXPECT_EQ(sheet.takeTable().columns(), 6);
}

TEST_F(PdfReport, theDocumentPageAndFontAreFixed)
{
    const Sheet sheet(monoTakes(1));
    EXPECT_EQ(sheet.document.pageSize(), QSizeF(648.0, 864.0));
    EXPECT_EQ(sheet.document.defaultFont().families(), QStringList{ "Calibri" });
    EXPECT_EQ(sheet.document.defaultFont().pointSize(), 10);
    EXPECT_EQ(sheet.document.defaultFont().weight(), QFont::Normal);
    EXPECT_EQ(sheet.document.defaultFont().styleStrategy(), QFont::PreferAntialias);
}

TEST_F(PdfReport, thePageIsA4WithHalfAnInchAroundItAt300Dots)
{
    QPrinter printer(QPrinter::HighResolution);
    setUpPage(printer, path("report.pdf"));
    EXPECT_EQ(printer.outputFormat(), QPrinter::PdfFormat);
    EXPECT_EQ(printer.outputFileName(), path("report.pdf"));
    EXPECT_EQ(printer.pageLayout().pageSize().id(), QPageSize::A4);
    EXPECT_EQ(printer.pageLayout().orientation(), QPageLayout::Portrait);
    EXPECT_EQ(printer.pageLayout().margins(QPageLayout::Inch), QMarginsF(0.5, 0.5, 0.5, 0.5));
    EXPECT_EQ(printer.resolution(), 300);
}

TEST_F(PdfReport, theTitleIsCentredWithoutALogo)
{
    const Sheet sheet(monoTakes(1));
    EXPECT_EQ(sheet.tables.size(), 2);
    const QTextBlock title = sheet.document.firstBlock();
    EXPECT_EQ(title.text(), "Sound Report");
    EXPECT_EQ(int(title.blockFormat().alignment()), 132);
    EXPECT_EQ(title.blockFormat().bottomMargin(), 10.0);
    QTextCursor cursor(title);
    cursor.movePosition(QTextCursor::NextCharacter);
    expectFont(cursor.charFormat(), 14, 700);
}

TEST_F(PdfReport, aLogoThatIsNoPictureOrMissingGivesTheCentredTitle)
{
    writeBytes(folder.file("bad.jpg"), std::string("\xFF\xD8\xFF\xE0 broken"));
    for (const char* name : { "bad.jpg", "missing.png", "" }) {
        const Sheet sheet(monoTakes(1), { .companyLogoPath = folder.file(name) });
        EXPECT_EQ(sheet.tables.size(), 2) << name;
        EXPECT_EQ(sheet.document.firstBlock().text(), "Sound Report") << name;
    }
}

TEST_F(PdfReport, aPipeInPlaceOfALogoIsNotWaitedFor)
{
    const std::string pipe = folder.file("logo.png");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const Sheet sheet(monoTakes(1), { .companyLogoPath = pipe });
    EXPECT_EQ(sheet.tables.size(), 2);
}

TEST_F(PdfReport, aPictureCutShortIsLoadedWithoutAWord)
{
    const std::string whole = readBytes(logo(300, 300));
    writeBytes(folder.file("cut.png"), whole.substr(0, whole.size() / 2));
    testing::internal::CaptureStderr();
    const Sheet sheet(monoTakes(1), { .companyLogoPath = folder.file("cut.png") });
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_GE(sheet.tables.size(), 2);
}

TEST_F(PdfReport, standardErrorWorksAgainAfterAPictureWasRead)
{
    testing::internal::CaptureStderr();
    const Sheet sheet(monoTakes(1), { .companyLogoPath = logo(10, 10) });
    std::fputs("still here", stderr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "still here");
}

TEST_F(PdfReport, aLargeLogoIsScaledIntoItsBox)
{
    const Sheet sheet(monoTakes(1), { .companyLogoPath = logo(240, 60) });
    ASSERT_EQ(sheet.tables.size(), 3);
    EXPECT_EQ(imageOf(sheet).width(), 120.0);
    EXPECT_EQ(imageOf(sheet).height(), 30.0);
    EXPECT_EQ(imageOf(sheet).name(), "companylogo");
    const QVariant resource = sheet.document.resource(QTextDocument::ImageResource, QUrl("companylogo"));
    EXPECT_EQ(qvariant_cast<QImage>(resource).size(), QSize(120, 30));
}

TEST_F(PdfReport, aTallLogoIsScaledByItsHeight)
{
    const Sheet sheet(monoTakes(1), { .companyLogoPath = logo(60, 240) });
    EXPECT_EQ(imageOf(sheet).width(), 15.0);
    EXPECT_EQ(imageOf(sheet).height(), 60.0);
}

TEST_F(PdfReport, aSmallLogoStaysAsItIs)
{
    for (const QSize size : { QSize(100, 50), QSize(120, 60), QSize(1, 1) }) {
        const Sheet sheet(monoTakes(1), { .companyLogoPath = logo(size.width(), size.height()) });
        EXPECT_EQ(imageOf(sheet).width(), size.width());
        EXPECT_EQ(imageOf(sheet).height(), size.height());
    }
}

TEST_F(PdfReport, theTitleStandsLeftOfTheLogo)
{
    const Sheet sheet(monoTakes(1), { .companyLogoPath = logo(100, 50) });
    const QTextTable& title = *sheet.tables.first();
    EXPECT_EQ(title.rows(), 1);
    EXPECT_EQ(title.columns(), 2);
    EXPECT_EQ(Sheet::text(title, 0, 0), "Sound Report");
    EXPECT_EQ(Sheet::start(title, 0, 0).blockFormat().alignment(), Qt::AlignLeft);
    EXPECT_EQ(Sheet::start(title, 0, 1).blockFormat().alignment(), Qt::AlignRight);
    expectFont(Sheet::charFormat(title, 0, 0), 14, 700);
    const QTextTableFormat format = title.format();
    EXPECT_EQ(format.border(), 0);
    EXPECT_EQ(format.cellPadding(), 0);
    EXPECT_EQ(format.cellSpacing(), 0);
    EXPECT_EQ(format.width(), QTextLength(QTextLength::PercentageLength, 100));
    EXPECT_EQ(format.columnWidthConstraints(), percentLengths({ 70, 30 }));
}

TEST_F(PdfReport, theDetailsStandInFourRows)
{
    ReportSettings details;
    details.projectName = "Sh\xC3\xB6w";
    details.director = "D";
    details.soundMixer = "M";
    details.mixerPhone = "123";
    details.mixerEmail = "m@x";
    const Sheet sheet(monoTakes(1), details, "R1");
    const std::vector<std::vector<std::string>> expected{
        { "Project: Sh\xC3\xB6w", "File Type: Mono BWF", "Date: 2024-05-06" },
        { "Sound Mixer: M", "Sound Roll: R1", "Frame Rate: 25nd-C" },
        { "Mixer Phone: 123", "Director: D", "Bit Depth: 24 bits" },
        { "Mixer Email: m@x", "Producer:", "Sample Rate: 48000 Hz" },
    };
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 3; ++column) {
            EXPECT_EQ(sheet.detail(row, column), expected[size_t(row)][size_t(column)]);
            expectFont(Sheet::charFormat(sheet.detailTable(), row, column), 9, 400);
        }
    }
    const QTextTableFormat format = sheet.detailTable().format();
    EXPECT_EQ(format.border(), 0);
    EXPECT_EQ(format.cellPadding(), 2.0);
    EXPECT_EQ(format.cellSpacing(), 5.0);
    EXPECT_EQ(format.width().type(), QTextLength::VariableLength);
    EXPECT_EQ(format.columnWidthConstraints(), percentLengths({ 33, 33, 34 }));
}

TEST_F(PdfReport, emptyDetailsLeaveTheirLabelsAlone)
{
    const Sheet sheet(monoTakes(1));
    EXPECT_EQ(sheet.detail(0, 0), "Project: ");
    EXPECT_EQ(sheet.detail(1, 1), "Sound Roll: ");
    EXPECT_EQ(sheet.detail(3, 0), "Mixer Email: ");
}

TEST_F(PdfReport, theFileTypeTellsMonoFromPoly)
{
    std::vector<TakeInfo> takes = monoTakes(3);
    EXPECT_EQ(Sheet(takes).detail(0, 1), "File Type: Mono BWF");
    takes[1].isPoly = true;
    EXPECT_EQ(Sheet(takes).detail(0, 1), "File Type: Mono BWF / Poly BWF");
    takes[0].isPoly = takes[2].isPoly = true;
    EXPECT_EQ(Sheet(takes).detail(0, 1), "File Type: Poly BWF");
}

TEST_F(PdfReport, theLastTakeWithARateSpeaksForTheRoll)
{
    std::vector<TakeInfo> takes = monoTakes(4);
    takes[2].frameRate = 29.97;
    takes[2].sampleRate = 96000;
    takes[2].bitDepth = 16;
    takes[3].frameRate = 0.0;
    takes[3].sampleRate = 0;
    takes[3].bitDepth = 0;
    const Sheet sheet(takes);
    EXPECT_EQ(sheet.detail(1, 2), "Frame Rate: 29.97df-C");
    EXPECT_EQ(sheet.detail(2, 2), "Bit Depth: 16 bits");
    EXPECT_EQ(sheet.detail(3, 2), "Sample Rate: 96000 Hz");
    for (int row = 1; row <= 7; row += 2)
        EXPECT_EQ(sheet.cell(row, 3), "29.97df-C");
}

TEST_F(PdfReport, aRollWithoutFrameRateLeavesItEmptyAndCountsDurationsAtThirty)
{
    std::vector<TakeInfo> takes = monoTakes(1);
    takes[0].frameRate = 0.0;
    takes[0].duration = 61.99;
    const Sheet sheet(takes);
    EXPECT_EQ(sheet.detail(1, 2), "Frame Rate: ");
    EXPECT_EQ(sheet.cell(1, 3), "");
    EXPECT_EQ(sheet.cell(1, 4), "00:01:01");
}

TEST_F(PdfReport, theEarliestFileDateIsTheReportsDate)
{
    std::vector<TakeInfo> takes = monoTakes(4);
    takes[0].fileDate = QDateTime();
    takes[1].fileDate = QDateTime(QDate(2024, 3, 2), QTime(0, 0));
    takes[2].fileDate = QDateTime(QDate(2024, 3, 1), QTime(0, 0));
    takes[3].fileDate = QDateTime();
    EXPECT_EQ(Sheet(takes).detail(0, 2), "Date: 2024-03-01");
}

TEST_F(PdfReport, filesWithoutDatesCarryToday)
{
    std::vector<TakeInfo> takes = monoTakes(2);
    takes[0].fileDate = takes[1].fileDate = QDateTime();
    const QString before = QDate::currentDate().toString("yyyy-MM-dd");
    const std::string shown = Sheet(takes).detail(0, 2);
    const QString after = QDate::currentDate().toString("yyyy-MM-dd");
    EXPECT_TRUE(shown == "Date: " + before.toStdString() || shown == "Date: " + after.toStdString()) << shown;
}

TEST_F(PdfReport, theHeaderRowIsBoldAndShadedBehindItsCharacters)
{
    const Sheet sheet(monoTakes(1));
    const char* const titles[] = { "File Name", "Scene", "Take", "FPS", "Dur.", "Start TC" };
    for (int column = 0; column < 6; ++column) {
        EXPECT_EQ(sheet.cell(0, column), titles[column]);
        const QTextCharFormat format = Sheet::charFormat(sheet.takeTable(), 0, column);
        expectFont(format, 9, 700);
        EXPECT_EQ(format.background(), QBrush(QColor(240, 240, 240)));
        EXPECT_EQ(sheet.takeTable().cellAt(0, column).format().background().style(), Qt::NoBrush);
    }
    EXPECT_EQ(sheet.takeTable().format().headerRowCount(), 0);
}

TEST_F(PdfReport, theTakeTableHasASolidFrameAndSixWidths)
{
    const Sheet sheet(monoTakes(1));
    const QTextTableFormat format = sheet.takeTable().format();
    EXPECT_EQ(format.border(), 1.0);
    EXPECT_EQ(format.borderStyle(), QTextFrameFormat::BorderStyle_Solid);
    EXPECT_EQ(format.cellPadding(), 4.0);
    EXPECT_EQ(format.cellSpacing(), 0.0);
    EXPECT_EQ(format.alignment(), Qt::AlignLeft);
    EXPECT_EQ(format.width(), QTextLength(QTextLength::PercentageLength, 100));
    EXPECT_EQ(format.columnWidthConstraints(), percentLengths({ 35, 12, 8, 12, 10, 23 }));
}

TEST_F(PdfReport, aTakeFillsTwoRows)
{
    std::vector<TakeInfo> takes = monoTakes(1);
    takes[0].filename = "TAKE1.WAV";
    takes[0].tracks = { "Boom", "Lav" };
    takes[0].notes = "plane";
    const Sheet sheet(takes);
    EXPECT_EQ(sheet.cell(1, 0), "TAKE1\nTracks: Boom, Lav");
    EXPECT_EQ(sheet.cell(1, 1), "S1");
    EXPECT_EQ(sheet.cell(1, 2), "1");
    EXPECT_EQ(sheet.cell(1, 3), "25nd-C");
    EXPECT_EQ(sheet.cell(1, 4), "00:00:30");
    EXPECT_EQ(sheet.cell(1, 5), "01:02:03:04");
    for (int column = 0; column < 6; ++column)
        expectFont(Sheet::charFormat(sheet.takeTable(), 1, column), 8, 400);
    EXPECT_EQ(sheet.cell(2, 0), "Notes: plane");
    EXPECT_EQ(sheet.takeTable().cellAt(2, 0).columnSpan(), 6);
    // Left is also what a block without an alignment answers. Merging drops what the notes' cell was given.
    EXPECT_TRUE(Sheet::start(sheet.takeTable(), 1, 0).blockFormat().hasProperty(QTextFormat::BlockAlignment));
    EXPECT_EQ(Sheet::start(sheet.takeTable(), 1, 0).blockFormat().alignment(), Qt::AlignLeft);
    EXPECT_EQ(Sheet::start(sheet.takeTable(), 2, 0).blockFormat().alignment(), Qt::AlignLeft);
    expectFont(Sheet::charFormat(sheet.takeTable(), 2, 0), 8, 700);
    expectFont(Sheet::charFormat(sheet.takeTable(), 2, 0, 7), 8, 400);
}

TEST_F(PdfReport, emptyLinesPartTheTables)
{
    // "T" is a table, "L" a line outside of the tables.
    const auto outline = [](const Sheet& sheet) {
        std::string shape;
        for (auto part = sheet.document.rootFrame()->begin(); !part.atEnd(); ++part)
            shape += part.currentFrame() ? 'T' : 'L';
        return shape;
    };
    EXPECT_EQ(outline(Sheet(monoTakes(1))), "LLTLLLTL");
    EXPECT_EQ(outline(Sheet(monoTakes(1), { .companyLogoPath = logo(100, 50) })), "LTLLTLLLTL");
}

TEST_F(PdfReport, aTakeWithoutNoteOrTracksStillHasItsLines)
{
    std::vector<TakeInfo> takes = monoTakes(1);
    takes[0].tracks.clear();
    takes[0].timecodeIn.clear();
    const Sheet sheet(takes);
    EXPECT_EQ(sheet.cell(1, 0), "takeS11\nTracks: MIX");
    EXPECT_EQ(sheet.cell(1, 5), "");
    EXPECT_EQ(sheet.cell(2, 0), "Notes: ");
}

TEST_F(PdfReport, theMixTrackIsAnOrdinaryName)
{
    EXPECT_EQ(Sheet(monoTakes(1)).cell(1, 0), "takeS11\nTracks: Mix");
}

TEST_F(PdfReport, aListWithoutTakesWritesNothing)
{
    SoundReportDialog dialog(QList<QString>{}, nullptr);
    EXPECT_FALSE(dialog.generatePdfReport(path("report.pdf")));
    EXPECT_FALSE(QFile::exists(path("report.pdf")));
}

TEST_F(PdfReport, thePagesAreA4WithEmbeddedFontsAndASoundStructure)
{
    const QString pdf = print({ addTake("a.wav", { .scene = "12", .note = "n" }) });
    EXPECT_TRUE(infoOf(pdf, "Page size").contains("(A4)")) << infoOf(pdf, "Page size").toStdString();
    EXPECT_EQ(infoOf(pdf, "Pages"), "1");
    const QStringList fonts = runCommand("pdffonts", { pdf }).out.split('\n', Qt::SkipEmptyParts).mid(2);
    EXPECT_GE(fonts.size(), 2);
    for (const QString& font : fonts)
        EXPECT_EQ(font.simplified().section(' ', -5, -5), "yes") << font.toStdString();
    expectSound(pdf);
}

TEST_F(PdfReport, twoHundredTakesFillManyPagesAndAllAreThere)
{
    QList<QString> paths;
    for (int i = 0; i < 200; ++i)
        paths << addTake("file" + std::to_string(i) + ".wav",
            { .scene = "SC" + std::to_string(1000 + i),
                .take = "T" + std::to_string(2000 + i),
                .note = "remark" + std::to_string(3000 + i),
                .frameRate = "25/1",
                .timeReference = 48000ull * 3600,
                .timestampRate = 48000 });
    const QString pdf = print(paths);
    EXPECT_GT(infoOf(pdf, "Pages").toInt(), 5);
    EXPECT_TRUE(infoOf(pdf, "Page size").contains("(A4)"));
    const QString text = textOf(pdf);
    for (int i = 0; i < 200; ++i) {
        EXPECT_EQ(text.count("SC" + QString::number(1000 + i)), 1);
        EXPECT_EQ(text.count("T" + QString::number(2000 + i)), 1);
        EXPECT_EQ(text.count("Notes: remark" + QString::number(3000 + i)), 1);
    }
    EXPECT_EQ(text.count("File Name"), 1);
    expectSound(pdf);
}

TEST_F(PdfReport, theDetailsComeFromTheSettingsAndTheRoll)
{
    setSetting("soundreport.productionCompany", "NOWHERE");
    setSetting("soundreport.projectName", "The Show");
    setSetting("soundreport.director", "A Director");
    setSetting("soundreport.soundMixer", "J\xC3\xBCrgen \xC3\x98rsted");
    setSetting("soundreport.mixerPhone", "+49 30 123");
    setSetting("soundreport.mixerEmail", "mixer@example.org");
    const QString text = textOf(print({ addTake("a.wav", { .project = "IGNORED", .tape = "ROLL7" }) }));
    for (const char* part : { "Project: The Show", "Director: A Director", "Sound Mixer: J\xC3\xBCrgen \xC3\x98rsted",
             "Mixer Phone: +49 30 123", "Mixer Email: mixer@example.org", "Producer:", "Sound Roll: ROLL7" })
        EXPECT_TRUE(text.contains(QString::fromUtf8(part))) << part << " in\n" << text.toStdString();
    EXPECT_FALSE(text.contains("NOWHERE"));
    EXPECT_FALSE(text.contains("IGNORED"));
}

TEST_F(PdfReport, aLogoIsPrinted)
{
    setSetting("soundreport.companyLogoPath", logo(240, 60));
    const QString pdf = print({ addTake("a.wav", {}) });
    const QString images = runCommand("pdfimages", { "-list", pdf }).out;
    EXPECT_TRUE(images.contains(" 120 ")) << images.toStdString();
    EXPECT_TRUE(textOf(pdf).contains("Sound Report"));
    expectSound(pdf);
}

TEST_F(PdfReport, foreignScriptsAndControlBytesInTextsDoNoHarm)
{
    const std::string nasty
        = std::string("\x01\x02\x7F \xEF\xBF\xBC \xEF\xB7\x90 \xEF\xB7\x91 \xFF\xFE \xE2\x80\xA9 ", 23)
        + std::string("\0x", 2) + "\xE6\x97\xA5 \xD8\xB3 \xF0\x9F\x8E\xAC";
    const QString pdf = print({ addTake("a.wav", { .scene = nasty, .note = nasty, .trackNames = { nasty } }) });
    expectSound(pdf);
}

TEST_F(PdfReport, aCommaLocaleGivesASoundFile)
{
    const CommaLocale comma;
    if (!comma.works())
        GTEST_SKIP() << "no locale with a decimal comma on this machine";
    const QString pdf = print({ addTake("a.wav", { .frameRate = "23.976", .seconds = 3661 }) });
    const QString text = textOf(pdf);
    EXPECT_TRUE(text.contains("Frame Rate: 23.98nd-C"));
    EXPECT_TRUE(text.contains("01:01:01"));
    EXPECT_TRUE(infoOf(pdf, "Page size").contains("(A4)"));
    expectSound(pdf);
}

TEST_F(PdfReport, aTargetThatCannotBeWrittenStillCountsAsDone)
{
    SoundReportDialog dialog({ addTake("a.wav", {}) }, nullptr);
    EXPECT_TRUE(dialog.generatePdfReport(path("missing/report.pdf")));
    EXPECT_FALSE(QFile::exists(path("missing")));
    EXPECT_TRUE(dialog.generatePdfReport(path("")));
    EXPECT_TRUE(dialog.generatePdfReport("/proc/report.pdf"));
    EXPECT_TRUE(dialog.generatePdfReport(""));
}

TEST_F(PdfReport, aReadOnlyTargetStillCountsAsDoneAndStaysAsItIs)
{
    SoundReportDialog dialog({ addTake("a.wav", {}) }, nullptr);
    withReadOnlyTargets([&dialog](const QString& inFolder, const QString& file) {
        EXPECT_TRUE(dialog.generatePdfReport(inFolder));
        EXPECT_TRUE(dialog.generatePdfReport(file));
    });
}

TEST_F(PdfReport, aFullDiskIsNotNoticed)
{
    SoundReportDialog dialog({ addTake("a.wav", {}) }, nullptr);
    EXPECT_TRUE(dialog.generatePdfReport("/dev/full"));
}

TEST_F(PdfReport, anOlderFileIsReplaced)
{
    writeBytes(folder.file("report.pdf"), std::string(1000000, 'x'));
    expectSound(print({ addTake("a.wav", {}) }));
    EXPECT_LT(QFileInfo(path("report.pdf")).size(), 1000000);
}

TEST_F(PdfReport, aTargetWithoutThePdfSuffixIsStillAPdf)
{
    SoundReportDialog dialog({ addTake("a.wav", {}) }, nullptr);
    EXPECT_TRUE(dialog.generatePdfReport(path("report")));
    EXPECT_EQ(readBytes(folder.file("report")).substr(0, 5), "%PDF-");
}
