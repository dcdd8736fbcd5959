#include "tests/support/TestApplication.h"

std::unique_ptr<QApplication> makeTestApplication(int& argc, char** argv)
{
    return std::make_unique<QApplication>(argc, argv);
}
