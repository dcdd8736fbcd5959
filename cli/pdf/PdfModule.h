#pragma once

#include <string>
#include <vector>

class QString;
struct ReportSettings;
struct TakeInfo;

/// What the module that prints is asked for. Printing takes the graphical half of Qt, which is many times the size of
/// the program: so it lies in a library of its own, and is loaded when a PDF is asked for.
struct PdfOrder {
    /// The version of the program; the module refuses another one, since both share the records below as they lie in
    /// memory.
    std::string version;
    /// Not owned; not null. At least one take.
    const std::vector<TakeInfo>* takes = nullptr;
    const ReportSettings* settings = nullptr;
    const QString* soundRoll = nullptr;
    /// The PDF's bytes afterwards.
    std::string bytes = {};
    /// What went wrong, in words without a full stop; empty if nothing did.
    std::string complaint = {};
};

/// Type and name of the module's one operation. It makes the application object that fonts need, on a platform that
/// needs no display, so it is called in a process that has none. Main thread only.
using PrintPdf = void (*)(PdfOrder& order);
inline constexpr char kPrintPdfName[] = "tagwellPrintPdf";
