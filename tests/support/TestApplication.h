#pragma once

#include <QApplication>

#include <memory>

/// Makes the application object of a widget test. A test that needs one of a class of its own defines this function
/// itself, and the plain QApplication stays out of its executable.
/// `argc` must outlive the result.
std::unique_ptr<QApplication> makeTestApplication(int& argc, char** argv);
