#include "report/ReportFile.h"

#include <QFile>
#include <QTextStream>

bool openReportFile(QFile& file)
{
    return !file.fileName().isEmpty() && file.open(QIODevice::WriteOnly | QIODevice::Text);
}

bool writeReportFile(const QString& path, const std::vector<TakeInfo>& takes,
    void (*write)(QTextStream& out, const std::vector<TakeInfo>& takes))
{
    QFile file(path);
    if (!openReportFile(file))
        return false;
    QTextStream out(&file);
    out.setEncoding(QStringConverter::Utf8);
    write(out, takes);
    out.flush();
    file.close();
    return true;
}
