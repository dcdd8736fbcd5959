#include "tests/support/CommaLocale.h"

#include <clocale>
#include <cstdlib>

namespace {

class CommaNumbers : public std::numpunct<char> {
protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

constexpr const char* kName = "comma";

// Only the numbers: a whole locale takes seconds to make.
bool makeLocale(const TempFolder& folder)
{
    writeBytes(folder.file("source"),
        "LC_NUMERIC\ndecimal_point \"<U002C>\"\nthousands_sep \"<U002E>\"\ngrouping 3;3\nEND LC_NUMERIC\n");
    const std::string command
        = "localedef -c -i '" + folder.file("source") + "' -f ISO-8859-1 '" + folder.file(kName) + "' >/dev/null 2>&1";
    // Warnings about the categories that are missing make the status 1.
    return std::system(command.c_str()) != -1;
}

} // namespace

CommaLocale::CommaLocale()
    : before(std::setlocale(LC_NUMERIC, nullptr))
    , beforeCpp(std::locale::global(std::locale(std::locale::classic(), new CommaNumbers)))
{
    if (makeLocale(folder)) {
        setenv("LOCPATH", folder.path().c_str(), 1);
        std::setlocale(LC_NUMERIC, kName);
        unsetenv("LOCPATH");
    }
    active = *std::localeconv()->decimal_point == ',';
}

CommaLocale::~CommaLocale()
{
    std::locale::global(beforeCpp);
    std::setlocale(LC_NUMERIC, before.c_str());
}
