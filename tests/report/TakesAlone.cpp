// TakesAlone csv|ale FILE...
// Writes the report to standard output. A program of the takes and nothing else; a test looks at what it is linked
// with, and another at what it writes.

#include "report/AleReport.h"
#include "report/CsvReport.h"
#include "report/TakeInfo.h"

#include <QFile>
#include <QTextStream>

#include <cstdio>
#include <string_view>

int main(int argc, char** argv)
{
    QList<QString> paths;
    for (int i = 2; i < argc; ++i)
        paths.append(QFile::decodeName(argv[i]));
    QFile output;
    if (argc < 2 || !output.open(stdout, QIODevice::WriteOnly))
        return 2;
    QTextStream out(&output);
    const std::string_view format = argv[1];
    (format == "ale" ? writeAle : writeCsv)(out, readTakes(filesAmong(paths)));
    out.flush();
    return out.status() == QTextStream::Ok ? 0 : 1;
}
