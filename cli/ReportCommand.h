#pragma once

#include "cli/Command.h"
#include "report/AvidAle.h"

inline constexpr Option kReportOptions[] = {
    { .name = "format",
        .value = "FORMAT",
        .words = "pdf, csv and ale are what the window writes; avid-ale is for an import",
        .choices = "pdf|csv|ale|avid-ale" },
    { .name = "output",
        .value = "OUT",
        .words = "the file to write; replaced as a whole or not at all",
        .letter = 'o' },
    { .name = "circled", .words = "csv: two more columns, circled and wild" },
    { .name = "video-format",
        .value = "RASTER",
        .words = "avid-ale: raster of the project, NTSC, PAL, 720, 1080 (default) or CUSTOM",
        .choices = kAvidVideoFormats },
    { .name = "settings", .value = "FILE", .words = "pdf: production details from this file, not the window's" },
    { .name = "project", .value = "TEXT", .words = "pdf: project or show" },
    { .name = "director", .value = "TEXT", .words = "pdf: director" },
    { .name = "mixer", .value = "TEXT", .words = "pdf: sound mixer" },
    { .name = "phone", .value = "TEXT", .words = "pdf: the mixer's telephone" },
    { .name = "email", .value = "TEXT", .words = "pdf: the mixer's e-mail" },
    { .name = "logo", .value = "FILE", .words = "pdf: picture for the title" },
};

Exit runReport(const Arguments& arguments, Io& io);

/// Writes a report over files.
inline constexpr Command kReportCommand{
    .name = "report",
    .words = "Writes a report over the files",
    .operands = "FILE...",
    .options = kReportOptions,
    .example = "tagwell-cli report --format pdf /media/card/18Y12M31 -o 18Y12M31.pdf\n"
               "tagwell-cli report --format avid-ale --video-format PAL /media/card -o card.ale",
    .notes = "The window's reports are sorted by file number, scene and take; avid-ale has the order of the files.\n"
             "Files that can't be read, and for avid-ale those without start or frame rate, are told and left out.\n"
             "Production details are those of the window's settings where no option gives them.",
    .run = runReport,
};
