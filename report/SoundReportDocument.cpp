#include "report/SoundReportDocument.h"

#include "report/PictureFile.h"
#include "report/ReportFile.h"
#include "report/ReportSettings.h"
#include "report/ReportTexts.h"

#include <QBrush>
#include <QColor>
#include <QFile>
#include <QFont>
#include <QImage>
#include <QMarginsF>
#include <QPageLayout>
#include <QPageSize>
#include <QPrinter>
#include <QTextBlock>
#include <QTextBlockFormat>
#include <QTextCharFormat>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextImageFormat>
#include <QTextLayout>
#include <QTextTable>
#include <QTextTableFormat>
#include <QUrl>

#include <array>
#include <initializer_list>

namespace {

constexpr double kPageMarginInches = 0.5;
constexpr int kResolution = 300; // Dots per inch.
constexpr int kLongText = 10000; // Characters; more than a page holds.
// The document's own page, in its units. Fixed, not derived from the printer's page: printing scales one to the other.
constexpr double kDocumentWidth = 648.0;
constexpr double kDocumentHeight = 864.0;
constexpr int kLogoWidth = 120; // Pixels; larger logos are scaled down into this box.
constexpr int kLogoHeight = 60;
constexpr double kTitleBottomMargin = 10.0;
constexpr char kLogoResource[] = "companylogo";

struct TakeColumn {
    const char* title;
    double percent;
};

constexpr std::array<TakeColumn, 6> kTakeColumns{ {
    { "File Name", 35.0 },
    { "Scene", 12.0 },
    { "Take", 8.0 },
    { "FPS", 12.0 },
    { "Dur.", 10.0 },
    { "Start TC", 23.0 },
} };
constexpr int kTakeColumnCount = static_cast<int>(kTakeColumns.size());

QFont reportFont(int pointSize, int weight = -1)
{
    QFont font(QStringLiteral("Calibri"), pointSize, weight);
    font.setStyleStrategy(QFont::PreferAntialias);
    return font;
}

QTextCharFormat textFormat(int pointSize, int weight = -1)
{
    QTextCharFormat format;
    format.setFont(reportFont(pointSize, weight), QTextCharFormat::FontPropertiesAll);
    return format;
}

QTextCharFormat titleFormat()
{
    return textFormat(14, QFont::Bold);
}

// The shading lies behind the characters, not behind the whole cell.
QTextCharFormat headerFormat()
{
    QTextCharFormat format = textFormat(9, QFont::Bold);
    format.setBackground(QBrush(QColor(240, 240, 240)));
    return format;
}

QList<QTextLength> percentages(std::initializer_list<double> values)
{
    QList<QTextLength> lengths;
    for (const double value : values)
        lengths.append(QTextLength(QTextLength::PercentageLength, value));
    return lengths;
}

QTextCursor cellCursor(const QTextTable& table, int row, int column)
{
    return table.cellAt(row, column).firstCursorPosition();
}

void alignBlock(QTextCursor& cursor, Qt::Alignment alignment)
{
    QTextBlockFormat format;
    format.setAlignment(alignment);
    cursor.mergeBlockFormat(format);
}

void insertTitleWithLogo(QTextCursor& cursor, const QImage& picture)
{
    QImage logo = picture;
    if (logo.width() > kLogoWidth || logo.height() > kLogoHeight)
        logo = logo.scaled(kLogoWidth, kLogoHeight, Qt::KeepAspectRatio, Qt::SmoothTransformation);

    QTextTableFormat format;
    format.setBorder(0);
    format.setCellPadding(0);
    format.setCellSpacing(0);
    format.setWidth(QTextLength(QTextLength::PercentageLength, 100));
    format.setColumnWidthConstraints(percentages({ 70, 30 }));
    const QTextTable& table = *cursor.insertTable(1, 2, format);

    QTextCursor title = cellCursor(table, 0, 0);
    alignBlock(title, Qt::AlignLeft);
    title.insertText(QStringLiteral("Sound Report"), titleFormat());

    QTextCursor corner = cellCursor(table, 0, 1);
    alignBlock(corner, Qt::AlignRight);
    cursor.document()->addResource(QTextDocument::ImageResource, QUrl(QLatin1String(kLogoResource)), logo);
    QTextImageFormat image;
    image.setName(QLatin1String(kLogoResource));
    image.setWidth(logo.width());
    image.setHeight(logo.height());
    corner.insertImage(image);

    cursor.movePosition(QTextCursor::End);
    cursor.insertBlock();
}

void insertCentredTitle(QTextCursor& cursor)
{
    QTextBlockFormat format;
    format.setAlignment(Qt::AlignCenter);
    format.setBottomMargin(kTitleBottomMargin);
    cursor.setBlockFormat(format);
    cursor.insertText(QStringLiteral("Sound Report"), titleFormat());
    cursor.insertBlock();
}

void insertTitle(QTextCursor& cursor, const std::string& logoPath)
{
    const QImage logo = logoPath.empty() ? QImage() : loadPicture(QString::fromStdString(logoPath));
    if (logo.isNull())
        insertCentredTitle(cursor);
    else
        insertTitleWithLogo(cursor, logo);
}

QString fileTypeText(const RollSummary& roll)
{
    if (roll.hasPoly)
        return roll.hasMono ? QStringLiteral("Mono BWF / Poly BWF") : QStringLiteral("Poly BWF");
    return QStringLiteral("Mono BWF");
}

QString dateText(const RollSummary& roll)
{
    const QDateTime date = roll.date.isValid() ? roll.date : QDateTime::currentDateTime();
    return date.toString(QStringLiteral("yyyy-MM-dd"));
}

void insertDetails(
    QTextCursor& cursor, const ReportSettings& settings, const QString& soundRoll, const RollSummary& roll)
{
    QTextTableFormat format;
    format.setBorder(0);
    format.setCellPadding(2.0);
    format.setCellSpacing(5.0);
    format.setColumnWidthConstraints(percentages({ 33, 33, 34 }));
    const QTextTable& table = *cursor.insertTable(4, 3, format);

    const auto labelled = [](const char* label, const std::string& value) {
        return QLatin1String(label) + QString::fromStdString(value);
    };
    const QString rows[4][3] = {
        { labelled("Project: ", settings.projectName), QLatin1String("File Type: ") + fileTypeText(roll),
            QLatin1String("Date: ") + dateText(roll) },
        { labelled("Sound Mixer: ", settings.soundMixer), QLatin1String("Sound Roll: ") + soundRoll,
            QLatin1String("Frame Rate: ") + reportFrameRate(roll.frameRate) },
        { labelled("Mixer Phone: ", settings.mixerPhone), labelled("Director: ", settings.director),
            QLatin1String("Bit Depth: ") + QStringLiteral("%1 bits").arg(roll.bitDepth) },
        // No setting feeds the producer: the caption leaves room to write by hand.
        { labelled("Mixer Email: ", settings.mixerEmail), QStringLiteral("Producer:"),
            QLatin1String("Sample Rate: ") + QStringLiteral("%1 Hz").arg(roll.sampleRate) },
    };
    const QTextCharFormat text = textFormat(9);
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 3; ++column)
            cellCursor(table, row, column).insertText(rows[row][column], text);
    }
    cursor.movePosition(QTextCursor::End);
    cursor.insertBlock();
    cursor.insertBlock();
}

QTextTableFormat takeTableFormat()
{
    QTextTableFormat format;
    format.setBorder(1.0);
    format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
    format.setCellPadding(4.0);
    format.setCellSpacing(0.0);
    format.setAlignment(Qt::AlignLeft);
    format.setWidth(QTextLength(QTextLength::PercentageLength, 100));
    QList<QTextLength> widths;
    for (const TakeColumn& column : kTakeColumns)
        widths.append(QTextLength(QTextLength::PercentageLength, column.percent));
    format.setColumnWidthConstraints(widths);
    return format;
}

QString fileText(const TakeInfo& take)
{
    const QString tracks = take.tracks.empty() ? QStringLiteral("MIX") : joinedTracks(take, QStringLiteral(", "));
    return nameWithoutWav(take) + QLatin1String("\nTracks: ") + tracks;
}

// The table has room for whole seconds only: a text of four fields loses its frames.
QString durationInSeconds(const TakeInfo& take)
{
    const QString text = reportDuration(take);
    return text.count(QLatin1Char(':')) == 3 ? text.left(text.lastIndexOf(QLatin1Char(':'))) : text;
}

struct TakeFormats {
    QTextCharFormat body = textFormat(8);
    QTextCharFormat notesLabel = textFormat(8, QFont::Bold);
};

void fillTakeRow(
    const QTextTable& table, int row, const TakeInfo& take, const QString& rate, const TakeFormats& formats)
{
    QTextCursor first = cellCursor(table, row, 0);
    alignBlock(first, Qt::AlignLeft);
    first.insertText(fileText(take), formats.body);
    int column = 1;
    for (const QString& text : { QString::fromStdString(take.scene), QString::fromStdString(take.take), rate,
             durationInSeconds(take), QString::fromStdString(take.timecodeIn) })
        cellCursor(table, row, column++).insertText(text, formats.body);
}

void fillNotesRow(QTextTable& table, int row, const TakeInfo& take, const TakeFormats& formats)
{
    QTextCursor cursor = cellCursor(table, row, 0);
    alignBlock(cursor, Qt::AlignLeft);
    table.mergeCells(row, 0, 1, kTakeColumnCount);
    cursor.insertText(QStringLiteral("Notes: "), formats.notesLabel);
    cursor.insertText(QString::fromStdString(take.notes), formats.body);
}

void insertTakes(QTextCursor& cursor, const std::vector<TakeInfo>& takes, const QString& rate)
{
    const int rows = 2 * static_cast<int>(takes.size()) + 1;
    QTextTable& table = *cursor.insertTable(rows, kTakeColumnCount, takeTableFormat());
    const QTextCharFormat header = headerFormat();
    for (int column = 0; column < kTakeColumnCount; ++column)
        cellCursor(table, 0, column).insertText(QLatin1String(kTakeColumns[static_cast<size_t>(column)].title), header);

    const TakeFormats formats;
    int row = 1;
    for (const TakeInfo& take : takes) {
        fillTakeRow(table, row, take, rate, formats);
        fillNotesRow(table, row + 1, take, formats);
        row += 2;
    }
}

} // namespace

RollSummary summarizeRoll(const std::vector<TakeInfo>& takes)
{
    RollSummary roll;
    for (const TakeInfo& take : takes) {
        if (take.frameRate > 0.0)
            roll.frameRate = take.frameRate;
        if (take.sampleRate != 0)
            roll.sampleRate = take.sampleRate;
        if (take.bitDepth != 0)
            roll.bitDepth = take.bitDepth;
        (take.isPoly ? roll.hasPoly : roll.hasMono) = true;
        if (!roll.date.isValid() || (take.fileDate.isValid() && take.fileDate < roll.date))
            roll.date = take.fileDate;
    }
    return roll;
}

void composeSoundReport(QTextDocument& document, const std::vector<TakeInfo>& takes, const ReportSettings& settings,
    const QString& soundRoll)
{
    document.setPageSize(QSizeF(kDocumentWidth, kDocumentHeight));
    document.setDefaultFont(reportFont(10));
    const RollSummary roll = summarizeRoll(takes);

    QTextCursor cursor(&document);
    // One edit block around everything: the layout runs once at its end instead of after each cell, whose cost would
    // grow with the square of the takes.
    cursor.beginEditBlock();
    insertTitle(cursor, settings.companyLogoPath);
    insertDetails(cursor, settings, soundRoll, roll);
    insertTakes(cursor, takes, reportFrameRate(roll.frameRate));
    cursor.endEditBlock();
}

void setUpPage(QPrinter& printer, const QString& filePath)
{
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(filePath);
    printer.setPageSize(QPageSize(QPageSize::A4));
    const QMarginsF margins(kPageMarginInches, kPageMarginInches, kPageMarginInches, kPageMarginInches);
    printer.setPageMargins(margins, QPageLayout::Inch);
    printer.setResolution(kResolution);
}

// A text over many pages would be shaped anew as a whole for each of them, as a file has it that claims 65535 channels.
void keepLongTextsShaped(const QTextDocument& document)
{
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        if (block.length() > kLongText)
            block.layout()->setCacheEnabled(true);
    }
}

void printToPdf(const QTextDocument& document, const QString& filePath)
{
    // The printer would print a warning about a path that it can't write, so this is tried first.
    QFile target(filePath);
    if (!openReportFile(target))
        return;
    target.close();

    QPrinter printer(QPrinter::HighResolution);
    setUpPage(printer, filePath);
    keepLongTextsShaped(document);
    document.print(&printer);
}

bool writePdfReport(
    const QString& path, const std::vector<TakeInfo>& takes, const ReportSettings& settings, const QString& soundRoll)
{
    if (takes.empty())
        return false;
    QTextDocument document;
    composeSoundReport(document, takes, settings, soundRoll);
    printToPdf(document, path);
    return true;
}
