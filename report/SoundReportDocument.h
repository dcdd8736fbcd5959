#pragma once

#include "report/TakeInfo.h"

#include <QDateTime>
#include <QString>

#include <cstdint>
#include <vector>

class QPrinter;
class QTextDocument;
struct ReportSettings;

/// What the PDF report says once about the whole roll.
struct RollSummary {
    /// Frames per second of the last take that has a rate above 0; 0.0 if none has.
    double frameRate = 0.0;
    /// Hz of the last take that has a rate; 0 if none has.
    uint32_t sampleRate = 0;
    /// Bits per sample of the last take that has them; 0 if none has.
    uint16_t bitDepth = 0;
    bool hasPoly = false;
    bool hasMono = false;
    /// The earliest file date; invalid if no take has one.
    QDateTime date;
};

/// Walks the takes in list order.
RollSummary summarizeRoll(const std::vector<TakeInfo>& takes);

/// Fills an empty document with the title, the block of details and the table of takes. Of the settings all texts but
/// the production company are shown, the format is not looked at. Needs an application object with fonts.
void composeSoundReport(QTextDocument& document, const std::vector<TakeInfo>& takes, const ReportSettings& settings,
    const QString& soundRoll);

/// Makes a printer write a PDF to `filePath`: A4, margins of half an inch, 300 dots per inch. Prints nothing yet.
void setUpPage(QPrinter& printer, const QString& filePath);

/// Prints to an A4 PDF, replacing what stood there. Nothing happens if the path can't be written.
void printToPdf(const QTextDocument& document, const QString& filePath);

/// Composes and prints in one. False if there are no takes, and nothing is written then; true otherwise, even if the
/// path can't be written.
bool writePdfReport(
    const QString& path, const std::vector<TakeInfo>& takes, const ReportSettings& settings, const QString& soundRoll);
